// SPDX-License-Identifier: MIT
// The plain exports: C linkage, and no exception crosses them but that of the session object's own
// allocation.
#include <cxxabi.h>

#include "api/operations.h"
#include "beatatlas/beatatlas.h"
#include "session/Analyzer.h"

namespace {

using beatatlas::Analyzer;
using beatatlas::api::Tempo;

// Runs an operation that changes the session; whatever it throws ends here. Only the unwinding of a
// cancelled host thread goes on, since the C++ runtime ends a process in which it is swallowed.
template <class Operation>
void shielded(void* session, Operation operation) {
    try {
        operation();
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (...) {
        if (session != nullptr) beatatlas::api::abort(*static_cast<Analyzer*>(session));
    }
}

// A utility that runs out of memory answers as for a null handle; the session has no part in it.
template <class Result, class Operation>
Result shieldedResult(Operation operation) {
    Result result{};
    shielded(nullptr, [&] { result = operation(); });
    return result;
}

void* createShielded(int rate, Tempo tempo, int totalSamples, int sectionBeats, bool useLoud,
                     bool useZoom, bool useKey) {
    Analyzer* session = beatatlas::api::newSession();
    shielded(session, [&] {
        beatatlas::api::create(*session, rate, tempo, totalSamples, sectionBeats, useLoud, useZoom,
                               useKey);
    });
    return session;
}

}  // namespace

void* BA_Create48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom, bool useKey) {
    return createShielded(48000, Tempo::varied, totalSamples, sectionBeats, useLoud, useZoom,
                          useKey);
}

void* BA_Create44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom, bool useKey) {
    return createShielded(44100, Tempo::varied, totalSamples, sectionBeats, useLoud, useZoom,
                          useKey);
}

void* BA_CreateVaried48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                         bool useKey) {
    return createShielded(48000, Tempo::varied, totalSamples, sectionBeats, useLoud, useZoom,
                          useKey);
}

void* BA_CreateVaried44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                         bool useKey) {
    return createShielded(44100, Tempo::varied, totalSamples, sectionBeats, useLoud, useZoom,
                          useKey);
}

void* BA_CreateConst48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                        bool useKey) {
    return createShielded(48000, Tempo::constant, totalSamples, sectionBeats, useLoud, useZoom,
                          useKey);
}

void* BA_CreateConst44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                        bool useKey) {
    return createShielded(44100, Tempo::constant, totalSamples, sectionBeats, useLoud, useZoom,
                          useKey);
}

void BA_Release(void* session) {
    // Nothing is left to abort in: the session is gone.
    shielded(nullptr, [=] { beatatlas::api::release(session); });
}

bool BA_Analyzed(void* session) {
    return beatatlas::api::isAnalyzed(session) != 0;
}

void BA_SetSamplePre(void* session, float* left, float* right, int count) {
    shielded(session, [=] { beatatlas::api::setSamplePre(session, left, right, count); });
}

void BA_SetSample(void* session, float* left, float* right, int count) {
    shielded(session, [=] { beatatlas::api::setSample(session, left, right, count); });
}

int BA_GetBpm(void* session) {
    return beatatlas::api::getBpm(session);
}

int BA_GetBeatNum(void* session) {
    return beatatlas::api::getBeatNum(session);
}

void BA_GetBeatList(void* session, BA_BeatInfo* out) {
    beatatlas::api::getBeatList(session, out);
}

int BA_GetLoudWave(void* session, BA_WaveInfo* out, int have) {
    return beatatlas::api::getLoudWave(session, out, have);
}

int BA_GetDotsWave(void* session, BA_WaveInfo* out, int have) {
    return beatatlas::api::getDotsWave(session, out, have);
}

int BA_GetZoomWave(void* session, BA_WaveInfo* out) {
    return beatatlas::api::getZoomWave(session, out);
}

int BA_GetMainKey(void* session) {
    return beatatlas::api::getMainKey(session);
}

void BA_Resample(void* session, float* out, long outCount, float* in, long inCount, float ratio,
                 int step, long reserved) {
    shielded(nullptr, [=] {
        beatatlas::api::resample(session, out, outCount, in, inCount, ratio, step, reserved);
    });
}

void BA_CutBeats(void* session, float* out, float* in, int n, float rate, int div, int mode) {
    shielded(nullptr, [=] { beatatlas::api::cutBeats(session, out, in, n, rate, div, mode); });
}

float BA_PitchDetect(void* session, float* samples, int n, float rate, int hopDivisor, int mode) {
    return shieldedResult<float>(
        [=] { return beatatlas::api::pitchDetect(session, samples, n, rate, hopDivisor, mode); });
}

int BA_GetKey(void* session, float* samples, long n, float rate, float ref, int hopDivisor,
              int mode) {
    return shieldedResult<int>(
        [=] { return beatatlas::api::getKey(session, samples, n, rate, ref, hopDivisor, mode); });
}
