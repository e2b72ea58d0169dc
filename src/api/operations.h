// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "beatatlas/records.h"

/** Each operation of the interface, written once for its plain and its C++ export.
 *
 *  A handle may be null: nothing happens, and the result is 0 or false. Lengths are in frames,
 *  samples in 16-bit scale from -32768 to 32767. beatatlas.h and beatatlas.hpp describe each
 *  operation under the name of its export, with units and ranges. Where memory runs out, create,
 *  createSimple, setSamplePre, setSample and the utilities throw std::bad_alloc; nothing else
 *  throws. */
namespace beatatlas {

class Analyzer;

namespace api {

enum class Tempo { constant, varied };

/** A new session object, blank. @throws std::bad_alloc */
Analyzer* newSession();

/** Makes a blank session one of constant or varied tempo; it stays blank when an argument is
 *  refused (totalSamples ≤ 0, sectionBeats < 0).
 *  @param rate          44100 or 48000 frames per second
 *  @param totalSamples  declared length in frames
 *  @param sectionBeats  beats of the phrase that the tempo is measured over; 0: no beat analysis */
void create(Analyzer& session, int rate, Tempo tempo, int totalSamples, int sectionBeats,
            bool useLoud, bool useZoom, bool useKey);

/** Makes a blank session a simple one; it stays blank when totalSamples ≤ 0.
 *  @param rangeSamples  frames in which beats are sensed; below 1 or above totalSamples: a minute,
 *                       or the whole track when that is shorter */
void createSimple(Analyzer& session, int rate, int totalSamples, int rangeSamples, bool useLoud,
                  bool useZoom, bool useKey);

/** What the plain exports do after an exception. */
void abort(Analyzer& session);

/** Destroys a session; the handle is of no use afterwards. */
void release(void* session);

/** 1 when the closing analysis has run, else 0. An int: hosts in languages without bool read the
 *  exports' result as one, and a bool would leave the register's upper bits undefined. */
int isAnalyzed(void* session);

/** Feeds the pre-check pass, or the analysis pass; null arrays and count ≤ 0 do nothing.
 *  @param left,right  count samples each */
void setSamplePre(void* session, const float* left, const float* right, int count);
void setSample(void* session, const float* left, const float* right, int count);

/** The tempo in hundredths of a BPM; 0 when there is none. */
int getBpm(void* session);

/** Beats of the final grid. */
int getBeatNum(void* session);

/** @param out  room for getBeatNum() records */
void getBeatList(void* session, BA_BeatInfo* out);

/** Copies the points from `have` on to the same indices of out and returns how many exist.
 *  @param out  room for 400 points of the loudness wave, 100 of the dots wave */
int getLoudWave(void* session, BA_WaveInfo* out, int have);
int getDotsWave(void* session, BA_WaveInfo* out, int have);

/** Copies all points, none for a null out, and returns how many exist: 150 a second. */
int getZoomWave(void* session, BA_WaveInfo* out);

/** The key's number, 0 to 23; 0 also when there is none. */
int getMainKey(void* session);

/** Each copies so many values, none for a null out, and returns how many there are: 24 scores, 24
 *  key numbers, 12 counts and 12 shares. */
int getKeyPoint(void* session, double* out);
int getKeyRank(void* session, int* out);
int getNoteEncount(void* session, int* out);
int getNoteEncountVal(void* session, double* out);

/** The utilities on a caller's buffer, described in utilities.h; they use nothing of the
 *  session. */
void resample(void* session, float* out, long outCount, float* in, long inCount, float ratio,
              int step, long reserved);
void cutBeats(void* session, float* out, float* in, int n, float rate, int div, int mode);
float pitchDetect(void* session, float* samples, int n, float rate, int hopDivisor, int mode);
int getKey(void* session, float* samples, long n, float rate, float ref, int hopDivisor, int mode);

}  // namespace api
}  // namespace beatatlas
