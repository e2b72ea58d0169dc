// SPDX-License-Identifier: MIT
#include "api/operations.h"

#include <algorithm>

#include "beatatlas/utilities.h"
#include "dsp/RoundingMode.h"
#include "session/Analyzer.h"
#include "session/tempoHundredths.h"

namespace beatatlas::api {

namespace {

Analyzer* analyzerOf(void* session) {
    return static_cast<Analyzer*>(session);
}

// Copies the points the host does not hold yet to their own indices in its array; the result is how
// many exist.
int copyNewPoints(const WavePoint* points, int count, BA_WaveInfo* out, int have) {
    for (int i = std::max(have, 0); i < count; ++i) out[i] = {points[i].level, points[i].color};
    return count;
}

}  // namespace

Analyzer* newSession() {
    return new Analyzer;
}

void create(Analyzer& session, int rate, Tempo tempo, int totalSamples, int sectionBeats,
            bool useLoud, bool useZoom, bool useKey) {
    session.create(rate, totalSamples, sectionBeats, tempo == Tempo::varied, useLoud, useZoom,
                   useKey);
}

void createSimple(Analyzer& session, int rate, int totalSamples, int rangeSamples, bool useLoud,
                  bool useZoom, bool useKey) {
    session.createSimple(rate, totalSamples, 0, rangeSamples, useLoud, useZoom, useKey);
}

void abort(Analyzer& session) {
    session.abort();
}

void release(void* session) {
    delete analyzerOf(session);
}

int isAnalyzed(void* session) {
    return session != nullptr && analyzerOf(session)->isAnalyzed() ? 1 : 0;
}

void setSamplePre(void* session, const float* left, const float* right, int count) {
    if (session != nullptr) analyzerOf(session)->setSamplePre(left, right, count);
}

void setSample(void* session, const float* left, const float* right, int count) {
    if (session != nullptr) analyzerOf(session)->setSample(left, right, count);
}

int getBpm(void* session) {
    return session == nullptr ? 0 : analyzerOf(session)->getBpm();
}

int getBeatNum(void* session) {
    return session == nullptr ? 0 : static_cast<int>(analyzerOf(session)->getBeatList().size());
}

void getBeatList(void* session, BA_BeatInfo* out) {
    if (session == nullptr) return;
    const TowardZeroScope mode;
    for (const peakss::BeatInfo& beat : analyzerOf(session)->getBeatList()) {
        *out = {beat.pos, beat.group, tempoHundredths(60000.0F / beat.interval)};
        ++out;
    }
}

int getLoudWave(void* session, BA_WaveInfo* out, int have) {
    if (session == nullptr) return 0;
    Analyzer& analyzer = *analyzerOf(session);
    return copyNewPoints(analyzer.getLoudWave(), analyzer.getLoudNum(), out, have);
}

int getDotsWave(void* session, BA_WaveInfo* out, int have) {
    if (session == nullptr) return 0;
    Analyzer& analyzer = *analyzerOf(session);
    return copyNewPoints(analyzer.getDotsWave(), analyzer.getDotsNum(), out, have);
}

int getZoomWave(void* session, BA_WaveInfo* out) {
    if (session == nullptr) return 0;
    Analyzer& analyzer = *analyzerOf(session);
    const int count = analyzer.getZoomNum();
    if (out == nullptr) return count;
    const ZoomPoint* points = analyzer.getZoomWave();
    for (int i = 0; i < count; ++i) out[i] = {static_cast<float>(points[i].level), points[i].color};
    return count;
}

int getMainKey(void* session) {
    return session == nullptr ? 0 : analyzerOf(session)->getMainKey();
}

int getKeyPoint(void* session, double* out) {
    return session == nullptr ? 0 : analyzerOf(session)->getKeyPoint(out);
}

int getKeyRank(void* session, int* out) {
    return session == nullptr ? 0 : analyzerOf(session)->getKeyRank(out);
}

int getNoteEncount(void* session, int* out) {
    return session == nullptr ? 0 : analyzerOf(session)->getNoteEncount(out);
}

int getNoteEncountVal(void* session, double* out) {
    return session == nullptr ? 0 : analyzerOf(session)->getNoteEncountVal(out);
}

void resample(void* session, float* out, long outCount, float* in, long inCount, float ratio,
              int step, long reserved) {
    if (session != nullptr) resample2(out, outCount, in, inCount, ratio, step, reserved);
}

void cutBeats(void* session, float* out, float* in, int n, float rate, int div, int mode) {
    if (session != nullptr) CutBeats(out, in, n, rate, div, mode);
}

float pitchDetect(void* session, float* samples, int n, float rate, int hopDivisor, int mode) {
    if (session == nullptr) return 0.0F;
    return static_cast<float>(PitchDetect(samples, n, rate, hopDivisor, mode));
}

int getKey(void* session, float* samples, long n, float rate, float ref, int hopDivisor, int mode) {
    if (session == nullptr) return 0;
    S_KEY_SCALE_RESULT unused{};
    return KeyCodeScale(&unused, samples, n, rate, ref, hopDivisor, mode, nullptr);
}

}  // namespace beatatlas::api
