// SPDX-License-Identifier: MIT
/** @file
 *  The stand-alone utilities of Beat Atlas, each working on a buffer handed in by the caller.
 *
 *  For C++ hosts: the names have C++ linkage and live in the global namespace. A C host reaches the same
 *  operations through the BA_… functions of beatatlas.h.
 *
 *  Common to all of them:
 *  - Buffers belong to the caller and are not kept; pointers are not const in the signatures, but only what is
 *    told to be written is written.
 *  - No state is kept between calls. Working memory lives for the call; std::bad_alloc is thrown when there is
 *    none, with nothing leaked.
 *  - They compute in the calling thread's rounding mode and leave it alone. A session rounds toward zero; a host
 *    that wants the same bits as through a session's handle sets that mode first.
 *  - Any thread, any number of calls at a time. */
#pragma once

#include "beatatlas/export.h"

/** A record the key finder accepts and leaves untouched; it carries nothing. */
struct S_KEY_SCALE_RESULT {
    int reserved;
};

/** Finds the key of a mono buffer.
 *
 *  Measures 72 semitone bins, six octaves from four octaves below the reference pitch, with a constant-Q
 *  transform frame by frame; folds them into the strengths of the twelve pitch classes; and scores the major and
 *  the minor key of each of the five strongest by how strong its third, fourth and fifth are.
 *
 *  The buffer needs a frame and a hop to give an answer (at 44,100 Hz and 440 Hz a frame is 53,937 samples); a
 *  shorter one, silence, hopDivisor ≤ 0 or above the hop, and values without meaning (NaN, a rate or reference
 *  not above 0) count as twelve equal strengths and give the key of those. Every call ends and returns 0 to 23.
 *
 *  @param result      untouched; may be null
 *  @param samples     n mono samples at rate, any scale; not read for n ≤ 0
 *  @param n           buffers of 30 s and more are scored by the weights for long tracks
 *  @param rate        sampling rate in Hz. 4000 is fast and enough for most music
 *  @param ref         the frequency of A4 in Hz, 440 unless the recording is tuned otherwise
 *  @param hopDivisor  divides the hop between frames: 1 is fastest
 *  @param mode        hop and weights. 0 and any value not listed: hop 2048. 1: 2048, long tracks 16384.
 *                     2: 4096, long 16384. 3 and 4: 8192, long 16384. In modes 1 to 4 long tracks at a rate of
 *                     exactly 4000 have a hop of 8192. Modes 2 and 3 weigh the octaves of short tracks otherwise.
 *                     Keep rate / (hop / hopDivisor) above 2 frames a second: the smoothing over time is made
 *                     for that, and from 1 to 2 it diverges, so that the answer means nothing.
 *  @param text        untouched; may be null
 *  @return 0 to 11: major keys whose tonic is pitch class 0 to 11, counted in semitones from the reference pitch
 *          (A, A♯, B, C …); 12 to 23: the minor keys in the same order. _key_table of key_tables.h names them. */
BA_API int KeyCodeScale(S_KEY_SCALE_RESULT* result, float* samples, long n, float rate, float ref,
                        int hopDivisor, int mode, const char* text);
