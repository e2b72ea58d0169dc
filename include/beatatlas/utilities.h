// SPDX-License-Identifier: MIT
/** @file
 *  The stand-alone utilities of Beat Atlas, each working on a buffer handed in by the caller.
 *
 *  For C++ hosts: the names have C++ linkage and live in the global namespace. A C host reaches the
 *  same operations through the BA_… functions of beatatlas.h.
 *
 *  Common to all of them:
 *  - Buffers belong to the caller and are not kept; pointers are not const in the signatures, but
 *    only what is said to be written is written.
 *  - No state is kept between calls. Working memory lives for the call; std::bad_alloc is thrown
 *    when there is none, with nothing leaked.
 *  - They compute in the calling thread's rounding mode and leave it alone. A session rounds toward
 *    zero; a host that wants the same bits as through a session's handle sets that mode first.
 *  - Any thread, any number of calls at a time. */
#pragma once

#include "beatatlas/export.h"

/** A record the key finder accepts and leaves untouched; it carries nothing. */
struct S_KEY_SCALE_RESULT {
    /** Not looked at. */
    int reserved;
};

/** Finds the key of a mono buffer.
 *
 *  Measures 72 semitone bins, six octaves from four octaves below the reference pitch, with a
 *  constant-Q transform frame by frame; folds them into the strengths of the twelve pitch classes;
 *  and scores the major and the minor key of each of the five strongest by how strong its third,
 *  fourth and fifth are.
 *
 *  The buffer needs a frame and a hop to give an answer (at 44,100 Hz and 440 Hz a frame is 53,937
 *  samples); a shorter one, silence, hopDivisor ≤ 0 or above the hop, and values without meaning
 *  (NaN, a rate or reference not above 0) count as twelve equal strengths and give the key of
 *  those. Every call ends and returns 0 to 23.
 *
 *  @param result      untouched; may be null
 *  @param samples     n mono samples at rate, any scale; not read for n ≤ 0
 *  @param n           buffers of 30 s and more are scored by the weights for long tracks
 *  @param rate        sampling rate in Hz. 4000 is fast and enough for most music
 *  @param ref         the frequency of A4 in Hz, 440 unless the recording is tuned otherwise
 *  @param hopDivisor  divides the hop between frames: 1 is fastest
 *  @param mode        hop and weights. 0 and any value not listed: hop 2048. 1: 2048, long tracks
 *                     16384.
 *                     2: 4096, long 16384. 3 and 4: 8192, long 16384. In modes 1 to 4 long tracks
 *                     at a rate of exactly 4000 have a hop of 8192. Modes 2 and 3 weigh the octaves
 *                     of short tracks otherwise. Keep rate / (hop / hopDivisor) above 2 frames a
 *                     second: the smoothing over time is made for that, and from 1 to 2 it
 *                     diverges, so that the answer means nothing.
 *  @param text        untouched; may be null
 *  @return 0 to 11: major keys whose tonic is pitch class 0 to 11, counted in semitones from the
 *          reference pitch (A, A♯, B, C …); 12 to 23: the minor keys in the same order. _key_table
 *          of key_tables.h names them. */
BA_API int KeyCodeScale(S_KEY_SCALE_RESULT* result, float* samples, long n, float rate, float ref,
                        int hopDivisor, int mode, const char* text);

/** @name Resampler
 *  @{ */

/** Thins out a buffer: low-passes it at about a twentieth of its rate and takes every step-th
 *  filtered sample.
 *
 *  Made for step 10 (44,100 Hz to 4,410 Hz, say). The filter's response, with f as a part of the
 *  input rate: ripple of about 0.3 dB up to 0.04, -2.8 dB at 0.05, -24 dB at 0.07, -50 dB at 0.1; a
 *  constant comes out about 1.04 times as large. out[i] is the filtered sample 7 + i × step: the
 *  first seven only begin to rise.
 *
 *  @param out       receives at most outCount samples: as many as there are filtered samples to
 *                   take; the rest of it stays untouched. May be in itself. Null: nothing is done
 *  @param outCount  how many there is room for
 *  @param in        inCount samples. Null: nothing is done
 *  @param inCount   how many are there
 *  @param ratio     not looked at
 *  @param step      1 and more; 0 takes sample 7 again and again, less than 0 goes backward as far
 *                   as sample 0
 *  @param reserved  not looked at
 *  @note Working memory: inCount floats. */
BA_API void resample2(float* out, long outCount, float* in, long inCount, float ratio, int step,
                      long reserved);

/** The resampler's filter: writes nine denominator coefficients to a (a[0] = 1), nine numerator
 *  coefficients to b.
 *  @return a */
BA_API float* make_8(float* a, float* b);

/** An eighth-order section in direct form II over n samples, in single precision, from silence.
 *
 *  Nothing is done for n ≤ 0. No array is checked for null.
 *  @param in   n samples
 *  @param out  room for n samples; may be in itself
 *  @param n    length of the buffer
 *  @param a    nine denominator coefficients; a[0] counts as 1 and is not looked at
 *  @param b    nine numerator coefficients */
BA_API void filter8_mono(float* in, float* out, long n, float* a, float* b);
/** @} */

/** Removes percussive beats from a mono buffer: silences in its short-time spectrum whatever does
 *  not stand out of the octave around it, and holds the 20 lowest bins down to their slow envelope,
 *  which takes the bass drum out.
 *
 *  Frames of N = 4096 / div samples lie H apart, F = (n - N) / H of them (whole divisions). Only
 *  their stretch, the first (F - 1) × H + N samples of out, is written. Nothing is written when
 *  there is no frame, and for div ≤ 0, a hop below 1, an N that is no power of two, or a null
 *  array.
 *
 *  @param out   n samples; may be in itself
 *  @param in    n samples, any scale
 *  @param n     length of the buffer
 *  @param rate  sampling rate in Hz
 *  @param div   divides the lengths of frame and hop; 1, 2, 4 … make sense
 *  @param mode  H × div. 0 and any value not listed: 512. For buffers of 30 s and more 1: 1024, 2:
 *               1488, 3: 1720, 4: 2304; for shorter ones 1: 512, 2: 1128, 3: 1184, 4: 1464
 *  @note Working memory: about 32 bytes per sample at a hop of 512, the less the longer the hop.
 *        When there is not enough, out is untouched. */
BA_API void CutBeats(float* out, float* in, int n, float rate, int div, int mode);

/** Finds what A4 is tuned to in a mono recording, in whole hertz.
 *
 *  Gives each candidate reference two octaves of semitone bins and rewards it for strong bins that
 *  stay strongest from frame to frame. Silence, a buffer shorter than one frame and one hop (a
 *  frame is 2 × rate / 25.8 samples at the lowest reference), hopDivisor < 1 or above the hop, a
 *  null array and a rate without meaning give 434. The lower of two equally good references wins.
 *
 *  @param samples     n mono samples, any scale
 *  @param n           length of the buffer
 *  @param rate        sampling rate in Hz; a recording thinned out by resample2 is looked through
 *                     in a tenth of the time
 *  @param hopDivisor  divides the hop between frames: 1 is fastest
 *  @param mode        how closely to look. 0 and any value not listed: hop 2048, all candidates. 1:
 *                     buffers of 30 s and more have a hop of 3072, shorter ones try every other
 *                     candidate and then beside the best.
 *                     2: hop 3072, where 30 s and more try every other candidate. 3 and 4: hop
 *                     3072, every other candidate
 *  @return 434 to 446 */
BA_API int PitchDetect(float* samples, int n, float rate, int hopDivisor, int mode);
