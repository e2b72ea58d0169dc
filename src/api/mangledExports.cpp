// SPDX-License-Identifier: MIT
// The exports with C++ linkage: exceptions pass. This file never sees the plain header, whose
// declarations would give the same names C linkage.
#include <memory>

#include "api/operations.h"
#include "beatatlas/beatatlas.hpp"
#include "session/Analyzer.h"

namespace {

using beatatlas::Analyzer;
using beatatlas::api::Tempo;

void* create(int rate, Tempo tempo, int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
             bool useKey) {
    std::unique_ptr<Analyzer> session(beatatlas::api::newSession());
    beatatlas::api::create(*session, rate, tempo, totalSamples, sectionBeats, useLoud, useZoom,
                           useKey);
    return session.release();
}

void* createSimple(int rate, int totalSamples, int rangeSamples, bool useLoud, bool useZoom,
                   bool useKey) {
    std::unique_ptr<Analyzer> session(beatatlas::api::newSession());
    beatatlas::api::createSimple(*session, rate, totalSamples, rangeSamples, useLoud, useZoom,
                                 useKey);
    return session.release();
}

}  // namespace

void* BA_Create48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom, bool useKey) {
    return create(48000, Tempo::varied, totalSamples, sectionBeats, useLoud, useZoom, useKey);
}

void* BA_Create44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom, bool useKey) {
    return create(44100, Tempo::varied, totalSamples, sectionBeats, useLoud, useZoom, useKey);
}

void* BA_CreateVaried48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                         bool useKey) {
    return create(48000, Tempo::varied, totalSamples, sectionBeats, useLoud, useZoom, useKey);
}

void* BA_CreateVaried44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                         bool useKey) {
    return create(44100, Tempo::varied, totalSamples, sectionBeats, useLoud, useZoom, useKey);
}

void* BA_CreateConst48k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                        bool useKey) {
    return create(48000, Tempo::constant, totalSamples, sectionBeats, useLoud, useZoom, useKey);
}

void* BA_CreateConst44k(int totalSamples, int sectionBeats, bool useLoud, bool useZoom,
                        bool useKey) {
    return create(44100, Tempo::constant, totalSamples, sectionBeats, useLoud, useZoom, useKey);
}

void* BA_CreateSimple48k(int totalSamples, int rangeSamples, bool useLoud, bool useZoom,
                         bool useKey) {
    return createSimple(48000, totalSamples, rangeSamples, useLoud, useZoom, useKey);
}

void* BA_CreateSimple44k(int totalSamples, int rangeSamples, bool useLoud, bool useZoom,
                         bool useKey) {
    return createSimple(44100, totalSamples, rangeSamples, useLoud, useZoom, useKey);
}

void BA_Release(void* session) {
    beatatlas::api::release(session);
}

bool BA_Analyzed(void* session) {
    return beatatlas::api::isAnalyzed(session) != 0;
}

void BA_SetSamplePre(void* session, float* left, float* right, int count) {
    beatatlas::api::setSamplePre(session, left, right, count);
}

void BA_SetSample(void* session, float* left, float* right, int count) {
    beatatlas::api::setSample(session, left, right, count);
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

int BA_GetKeyPoint(void* session, double* out) {
    return beatatlas::api::getKeyPoint(session, out);
}

int BA_GetKeyRank(void* session, int* out) {
    return beatatlas::api::getKeyRank(session, out);
}

int BA_GetNoteEncount(void* session, int* out) {
    return beatatlas::api::getNoteEncount(session, out);
}

int BA_GetNoteEncountVal(void* session, double* out) {
    return beatatlas::api::getNoteEncountVal(session, out);
}

void BA_Resample(void* session, float* out, long outCount, float* in, long inCount, float ratio,
                 int step, long reserved) {
    beatatlas::api::resample(session, out, outCount, in, inCount, ratio, step, reserved);
}

void BA_CutBeats(void* session, float* out, float* in, int n, float rate, int div, int mode) {
    beatatlas::api::cutBeats(session, out, in, n, rate, div, mode);
}

float BA_PitchDetect(void* session, float* samples, int n, float rate, int hopDivisor, int mode) {
    return beatatlas::api::pitchDetect(session, samples, n, rate, hopDivisor, mode);
}

int BA_GetKey(void* session, float* samples, long n, float rate, float ref, int hopDivisor,
              int mode) {
    return beatatlas::api::getKey(session, samples, n, rate, ref, hopDivisor, mode);
}
