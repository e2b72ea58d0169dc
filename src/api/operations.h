// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "beatatlas/records.h"

/** Each operation of the interface, written once for its plain and its C++ export. Handles may be
 *  null. */
namespace beatatlas {

class Analyzer;

namespace api {

enum class Tempo { constant, varied };

/** A new session object, blank. @throws std::bad_alloc */
Analyzer* newSession();
void create(Analyzer& session, int rate, Tempo tempo, int totalSamples, int sectionBeats,
            bool useLoud, bool useZoom, bool useKey);
void createSimple(Analyzer& session, int rate, int totalSamples, int rangeSamples, bool useLoud,
                  bool useZoom, bool useKey);
void abort(Analyzer& session);

void release(void* session);
bool isAnalyzed(void* session);
void setSamplePre(void* session, const float* left, const float* right, int count);
void setSample(void* session, const float* left, const float* right, int count);
int getBpm(void* session);
int getBeatNum(void* session);
void getBeatList(void* session, BA_BeatInfo* out);
int getLoudWave(void* session, BA_WaveInfo* out, int have);
int getDotsWave(void* session, BA_WaveInfo* out, int have);
int getZoomWave(void* session, BA_WaveInfo* out);
int getMainKey(void* session);
int getKeyPoint(void* session, double* out);
int getKeyRank(void* session, int* out);
int getNoteEncount(void* session, int* out);
int getNoteEncountVal(void* session, double* out);
void resample(void* session, float* out, long outCount, float* in, long inCount, float ratio,
              int step, long reserved);
void cutBeats(void* session, float* out, float* in, int n, float rate, int div, int mode);
float pitchDetect(void* session, float* samples, int n, float rate, int hopDivisor, int mode);
int getKey(void* session, float* samples, long n, float rate, float ref, int hopDivisor, int mode);

}  // namespace api
}  // namespace beatatlas
