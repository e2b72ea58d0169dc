// SPDX-License-Identifier: MIT
/** @file
 *  Beat Atlas for C++ hosts: the interface of beatatlas.h with C++ linkage, and six functions more.
 *
 *  The life of a session, samples, handles, threads, the rounding mode and the lines on standard
 *  output are described in beatatlas.h and hold here. Two things differ:
 *  - Exceptions pass. In practice that is std::bad_alloc, from the create and feeding calls and
 *    from the utilities; the session can still be released. (A create call that throws has released
 *    its session.)
 *  - Simple sessions (BA_CreateSimple…) and the key's ranking and note statistics exist here only.
 *
 *  Not to be included together with beatatlas.h in one source file. */
#ifndef BEATATLAS_BEATATLAS_HPP
#define BEATATLAS_BEATATLAS_HPP

#if defined(BEATATLAS_BEATATLAS_H)
#error "include beatatlas.h or beatatlas.hpp, not both: the names would keep the linkage seen first"
#endif

#include "beatatlas/export.h"
#include "beatatlas/records.h"
#include "beatatlas/version.h"

/** @name Creating a session
 *  As in beatatlas.h: totalSamples frames, sectionBeats (0: no beat analysis), then what is wanted.
 *  @{ */

/** As in beatatlas.h. */
BA_API void* BA_Create48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                          bool useKey);
BA_API void* BA_Create44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                          bool useKey);
BA_API void* BA_CreateVaried48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                                bool useKey);
BA_API void* BA_CreateVaried44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                                bool useKey);
BA_API void* BA_CreateConst48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                               bool useKey);
BA_API void* BA_CreateConst44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                               bool useKey);

/** A simple session: beats are sensed in the first rangeSamples frames only, and the grid is
 *  strictly regular over the whole track. Beat analysis is always on. 48,000 frames per second.
 *
 *  @param totalSamples  length of the track in frames, as in beatatlas.h
 *  @param rangeSamples  frames in which beats are sensed; below 1 or above totalSamples: one
 *                       minute, or the whole track when that is shorter
 *  @param useLoud       make the loudness and dots waves
 *  @param useZoom       make the zoom wave
 *  @param useKey        find the key; the track is then fed twice */
BA_API void* BA_CreateSimple48k(int totalSamples, int rangeSamples, bool useLoud, bool useZoom,
                                bool useKey);

/** The same at 44,100 frames per second. */
BA_API void* BA_CreateSimple44k(int totalSamples, int rangeSamples, bool useLoud, bool useZoom,
                                bool useKey);
/** @} */

/** @name As in beatatlas.h
 *  @{ */

/** As in beatatlas.h. */
BA_API void BA_Release(void* session);
BA_API bool BA_Analyzed(void* session);
BA_API void BA_SetSamplePre(void* session, float* left, float* right, int count);
BA_API void BA_SetSample(void* session, float* left, float* right, int count);
BA_API int BA_GetBpm(void* session);
BA_API int BA_GetBeatNum(void* session);
BA_API void BA_GetBeatList(void* session, BA_BeatInfo* out);
BA_API int BA_GetLoudWave(void* session, BA_WaveInfo* out, int have);
BA_API int BA_GetDotsWave(void* session, BA_WaveInfo* out, int have);
BA_API int BA_GetZoomWave(void* session, BA_WaveInfo* out);
BA_API int BA_GetMainKey(void* session);
/** @} */

/** @name The key in detail
 *  For sessions with key detection, after BA_Analyzed. Before that, or with key detection off, the
 *  scores and statistics are 0 and the ranking is 0, 1, 2 … 23 (in an inert session 24 zeros). Keys
 *  are numbered as by BA_GetMainKey; pitch classes 0 to 11 are A, A♯, B … G♯. A null out copies
 *  nothing and returns the count.
 *  @{ */

/** Copies the scores of all 24 keys, best first.
 *  @param session  a handle
 *  @param out      24 doubles
 *  @return 24; 0 for a null handle */
BA_API int BA_GetKeyPoint(void* session, double* out);

/** Copies the 24 key numbers, best first.
 *  @param session  a handle
 *  @param out      24 ints
 *  @return 24; 0 for a null handle */
BA_API int BA_GetKeyRank(void* session, int* out);

/** Copies how many of the 12 strongest semitone bands fall on each pitch class.
 *  @param session  a handle
 *  @param out      12 ints
 *  @return 12; 0 for a null handle */
BA_API int BA_GetNoteEncount(void* session, int* out);

/** Copies the share of those bands' energy that each pitch class holds; the shares add up to 1, or
 *  are all 0.
 *  @param session  a handle
 *  @param out      12 doubles
 *  @return 12; 0 for a null handle */
BA_API int BA_GetNoteEncountVal(void* session, double* out);
/** @} */

/** @name Utilities on a caller's buffer
 *  @{ */

/** As in beatatlas.h. */
BA_API void BA_Resample(void* session, float* out, long outCount, float* in, long inCount,
                        float ratio, int step, long reserved);
BA_API void BA_CutBeats(void* session, float* out, float* in, int n, float rate, int div, int mode);
BA_API float BA_PitchDetect(void* session, float* samples, int n, float rate, int hopDivisor,
                            int mode);
BA_API int BA_GetKey(void* session, float* samples, long n, float rate, float ref, int hopDivisor,
                     int mode);
/** @} */

#endif
