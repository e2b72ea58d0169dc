/* SPDX-License-Identifier: MIT */
/** @file
 *  Beat Atlas: tempo, beat grid, musical key and waveform overviews of one music track, in one
 *  pass.
 *
 *  This is the plain interface: C linkage, compiles as C99 and as C++. Exceptions never cross it. A
 *  C++ host that wants exceptions, the key ranking or simple sessions includes beatatlas.hpp
 *  instead; the two do not go into one source file, since the same names would then silently keep C
 *  linkage.
 *
 *  A whole analysis:
 *
 *      void* s = BA_CreateConst44k(frames, 32, true, true, false);
 *      while ((n = read(left, right, 4096)) > 0) BA_SetSample(s, left, right, n);
 *      if (BA_Analyzed(s)) {
 *          printf("%d.%02d BPM\n", BA_GetBpm(s) / 100, BA_GetBpm(s) % 100);
 *          BA_BeatInfo* beats = malloc(sizeof *beats * BA_GetBeatNum(s));
 *          BA_GetBeatList(s, beats);
 *      }
 *      BA_Release(s);
 *
 *  Life of a session
 *  =================
 *  1. One BA_Create… call: rate, length and what is wanted are fixed.
 *  2. With useKey only: the whole track through BA_SetSamplePre. It gathers the levels that key
 *     detection needs; until the declared length has arrived, BA_SetSample does nothing.
 *  3. The whole track through BA_SetSample, in calls of any length. The call that brings the
 *     declared length runs the closing analysis before it returns; BA_Analyzed is true from then
 *     on. Later calls are ignored.
 *  4. The getters. The waves can be read during step 3 and grow; tempo, beats and key exist after
 *     it.
 *  5. BA_Release.
 *
 *  A call out of this order does nothing. Nothing is ever reported by an error code: a getter of a
 *  session that has no answer returns the neutral result described there (0, false, nothing
 *  written).
 *
 *  Samples
 *  =======
 *  Two arrays of 32-bit floats, left and right, in the scale of 16-bit integers: from -32768 to
 *  32767. Most analysers cut values to integers toward zero and keep the low 16 bits: louder values
 *  wrap. +32768.0, which decoders give for a sample of +1.0, is already one of them: it becomes
 *  -32768, which may change the key, the beats and the colours of the waves. Clip to -32768 and
 *  32767 before feeding. NaN, infinities and values outside 32-bit integers count as 0 there. A
 *  mono track is fed as both channels. A frame is one sample per channel; every position and length
 *  here counts frames. The arrays are only read, and only during the call.
 *
 *  Handles
 *  =======
 *  A null handle is allowed everywhere: the call does nothing and returns its neutral result. Any
 *  other value must come from a BA_Create… call and not have been released.
 *
 *  Memory
 *  ======
 *  Every output array belongs to the caller, who sizes it by the count functions. The library keeps
 *  no pointer to it. When memory runs out in a create or feeding call of this interface, the call
 *  returns normally and the session stays as far as it got (after a create: inert); it can still be
 *  released. A utility then returns its neutral result. Only the allocation of the session object
 *  itself lets std::bad_alloc through.
 *
 *  Threads
 *  =======
 *  None are started. A session is used by one thread at a time, any thread; sessions share nothing.
 *
 *  Rounding mode
 *  =============
 *  The arithmetic is defined under round-toward-zero. A successful create, BA_SetSamplePre and
 *  BA_SetSample set that mode for the calling thread AND LEAVE IT SET: it changes what the host's
 *  own arithmetic, printf and decoder yield afterwards, and threads started later inherit it. A
 *  host that minds wraps each call:
 *
 *      #include <fenv.h>
 *      static int enterLibrary(void) { return fegetround(); }
 *      static void leaveLibrary(int mode) { fesetround(mode); }
 *      ...
 *      int mode = enterLibrary();
 *      BA_SetSample(s, left, right, n);
 *      leaveLibrary(mode);
 *
 *  The results of a session do not depend on the mode the host keeps: whatever computes sets its
 *  own. The stand-alone utilities (BA_Resample, BA_CutBeats, BA_PitchDetect, BA_GetKey) compute in
 *  the calling thread's mode as they find it and leave it alone.
 *
 *  Standard output
 *  ===============
 *  The closing analysis prints progress lines to the C standard output, in Japanese, encoded in
 *  UTF-8: its start, the clean-up of stray tempos, the list of tempo segments, its end. A host
 *  whose standard output carries data points file descriptor 1 elsewhere around the feeding
 *  calls. */
#ifndef BEATATLAS_BEATATLAS_H
#define BEATATLAS_BEATATLAS_H

#if defined(BEATATLAS_BEATATLAS_HPP)
#error "include beatatlas.h or beatatlas.hpp, not both: the names would keep the linkage seen first"
#endif

#if !defined(__cplusplus)
#include <stdbool.h>
#endif

#include "beatatlas/export.h"
#include "beatatlas/records.h"
#include "beatatlas/version.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @name Creating a session
 *
 *  Each returns a new handle, to be given to BA_Release. A refused argument (totalSamples ≤ 0,
 *  sectionBeats < 0) still gives a handle: of an inert session, on which every later call does
 *  nothing.
 *
 *  @param totalSamples  length of the track in frames, 1 to 2,147,483,647. The analysis closes when
 *                       that many have been fed.
 *  @param sectionBeats  0: no beat analysis. Otherwise, in sessions of varied tempo, the length in
 *                       beats of the phrase over which the grid's tempo is measured: 4, 8, 16, 32,
 *                       64 …; any other value means 32. In sessions of constant tempo the phrase is
 *                       always 32.
 *  @param useLoud       make the loudness and dots waves
 *  @param useZoom       make the zoom wave
 *  @param useKey        find the key; the track is then fed twice, first through BA_SetSamplePre
 *  @{ */

/** Tempo may vary along the track; 48,000 frames per second. The same as BA_CreateVaried48k. */
BA_API void* BA_Create48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                          bool useKey);

/** Tempo may vary along the track; 44,100 frames per second. The same as BA_CreateVaried44k. */
BA_API void* BA_Create44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                          bool useKey);

/** Tempo may vary along the track; 48,000 frames per second. */
BA_API void* BA_CreateVaried48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                                bool useKey);

/** Tempo may vary along the track; 44,100 frames per second. */
BA_API void* BA_CreateVaried44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                                bool useKey);

/** One tempo for the whole track, fine-tuned at the end; 48,000 frames per second. */
BA_API void* BA_CreateConst48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                               bool useKey);

/** One tempo for the whole track, fine-tuned at the end; 44,100 frames per second. */
BA_API void* BA_CreateConst44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                               bool useKey);
/** @} */

/** Destroys the session and all it owns. Null: nothing. The handle must not be used again. */
BA_API void BA_Release(void* session);

/** Whether the closing analysis has run. False for null, for an inert session and while the track
 *  is being fed. */
BA_API bool BA_Analyzed(void* session);

/** Feeds the pre-check pass: levels of the whole track, before BA_SetSample, in sessions with key
 *  detection.
 *
 *  Ignored in sessions without key detection, after the declared length has arrived, for count ≤ 0
 *  and for a null array. Frames of the completing call beyond the declared length enter the levels
 *  too.
 *
 *  @param session  a handle
 *  @param left     count samples, -32768 to 32767; only read
 *  @param right    the same of the other side
 *  @param count    frames */
BA_API void BA_SetSamplePre(void* session, float* left, float* right, int count);

/** Feeds the analysis pass. The call that brings the declared length runs the closing analysis
 *  before returning.
 *
 *  Ignored before the pre-check pass is complete (sessions with key detection), after the analysis,
 *  for count ≤ 0 and for a null array. How the track is split into calls does not change any result
 *  as long as the completing call ends with the declared length. Where it brings more, the frames
 *  beyond are analysed up to the end of the block that they began in, of 1/75 s counted from the
 *  start of the track; those behind are ignored.
 *
 *  @param session  a handle
 *  @param left     count samples, -32768 to 32767; only read
 *  @param right    the same of the other side
 *  @param count    frames */
BA_API void BA_SetSample(void* session, float* left, float* right, int count);

/** The tempo in hundredths of a BPM, rounded half up: 12800 is 128.00 BPM. 0 before the analysis
 *  has run, when no tempo was found and when beat analysis is off. */
BA_API int BA_GetBpm(void* session);

/** Number of beats in the final grid. 0 before the analysis has run, or when there is none. */
BA_API int BA_GetBeatNum(void* session);

/** Copies the final beat grid, in order of time. An empty grid writes nothing.
 *
 *  @param session  a handle
 *  @param out      room for BA_GetBeatNum(session) records; not checked */
BA_API void BA_GetBeatList(void* session, BA_BeatInfo* out);

/** Copies the new points of the loudness wave: at most 400, each one 400th of the declared length.
 *
 *  level: 0 and up, in 16-bit sample scale: the average level, held back where the bass is weak.
 *  After samples that are no audio, NaN or beyond ±2,147,483,647, it may be any float, below 0 and
 *  NaN among them.
 *  color: 0 bass over mids, 1 mids over bass, 2 bass over highs, 3 highs over bass (all four with
 *  strong bass), 4 weak bass with mids, 5 weak bass, or silence.
 *
 *  May be called while feeding; points are final when they appear.
 *
 *  @param session  a handle
 *  @param out      the caller's whole array, room for 400 points; points have … count − 1 are
 *                  written at their own indices, nothing when have ≥ count. Not checked for null
 *                  unless nothing is to be written.
 *  @param have     points the caller holds already; below 0 counts as 0
 *  @return the number of points that exist; 0 when the loudness wave is off */
BA_API int BA_GetLoudWave(void* session, BA_WaveInfo* out, int have);

/** Copies the new points of the dots wave: at most 100, each one 100th of the declared length.
 *
 *  level: bass peak energy of the span; 1.0 where only the mids have any, 0.0 where neither has;
 *  any float after samples that are no audio. color: always 5.
 *
 *  Arguments and result as for BA_GetLoudWave, with room for 100 points. */
BA_API int BA_GetDotsWave(void* session, BA_WaveInfo* out, int have);

/** Copies the zoom wave: 150 points per second, all of them at every call.
 *
 *  level: when the whole track has been fed, 0 to 31 on a square law, the loudest point of the
 *  track at 31; while feeding, the raw peak, 0 to 32767. color: 0 to 7, how much of the peak lies
 *  below 150 Hz: 0 for 87.5 % and more, 7 for less than 12.5 % and for silence.
 *
 *  @param session  a handle
 *  @param out      room for as many points as this call returns with a null out; null: nothing is
 *                  copied
 *  @return the number of points that exist; 0 when the zoom wave is off */
BA_API int BA_GetZoomWave(void* session, BA_WaveInfo* out);

/** The key of the track: 0 to 11 are the major keys A, A♯, B, C, C♯, D, D♯, E, F, F♯, G, G♯; 12 to
 *  23 the minor keys with the same tonics (12 is A minor). 0 also before the key has been found and
 *  when key detection is off. */
BA_API int BA_GetMainKey(void* session);

/** @name Utilities on a caller's buffer
 *  They need a handle that is not null but use nothing of the session. beatatlas/utilities.h says
 *  what each computes and offers them without a handle to C++ hosts.
 *  @{ */

/** Low-passes the input at 0.05 of its rate and takes every step-th sample (made for step 10).
 *  @param session   a handle
 *  @param out       outCount samples; what lies past the end of the input stays untouched
 *  @param outCount  how many there is room for
 *  @param in        inCount samples
 *  @param inCount   how many are there
 *  @param ratio     ignored
 *  @param step      the distance of the samples taken
 *  @param reserved  ignored */
BA_API void BA_Resample(void* session, float* out, long outCount, float* in, long inCount,
                        float ratio, int step, long reserved);

/** Removes percussive beats from a mono buffer.
 *  @param session  a handle
 *  @param out      n samples; those past the last whole frame stay untouched
 *  @param in       n samples
 *  @param n        length of the buffer
 *  @param rate     sampling rate in Hz
 *  @param div      divides frame and hop (1: frames of 4096 samples); ≤ 0: nothing is written
 *  @param mode     1 to 4 choose the hop, any other value the default hop of 512 / div */
BA_API void BA_CutBeats(void* session, float* out, float* in, int n, float rate, int div, int mode);

/** Finds the concert pitch of a recording: what A4 is tuned to, in whole Hz from 434 to 446.
 *  @param session     a handle
 *  @param samples     n mono samples at rate
 *  @param n           length of the buffer
 *  @param rate        sampling rate in Hz
 *  @param hopDivisor  divides the hop between frames
 *  @param mode        0 to 4: search plan
 *  @return 434.0 for silence and for buffers too short to judge; 0.0 for a null handle */
BA_API float BA_PitchDetect(void* session, float* samples, int n, float rate, int hopDivisor,
                            int mode);

/** Finds the key of a mono buffer, numbered as by BA_GetMainKey.
 *  @param session     a handle
 *  @param samples     n mono samples at rate
 *  @param n           length of the buffer
 *  @param rate        sampling rate in Hz
 *  @param ref         what A4 is tuned to, in Hz (440.0)
 *  @param hopDivisor  divides the hop between frames
 *  @param mode        0 to 4: hop rule and scoring weights */
BA_API int BA_GetKey(void* session, float* samples, long n, float rate, float ref, int hopDivisor,
                     int mode);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
