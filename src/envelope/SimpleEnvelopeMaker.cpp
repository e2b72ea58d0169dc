// SPDX-License-Identifier: MIT
// Regular beat grid from the bass level.
//   1. phase: do the beats or the points half way between them collect more level?
//   2. period: which beat length collects the most level, coarse and then fine
//   3. first beat, half a beat aside where the phase asks for it
//   4. the grid, from there to the end of the track
#include "envelope/SimpleEnvelopeMaker.h"

#include <algorithm>
#include <cmath>

#include "dsp/truncation.h"
#include "envelope/BeatPeriodSearch.h"
#include "envelope/BeatPhaseSearch.h"
#include "envelope/designFilter.h"

namespace beatatlas {

namespace {

constexpr double kAudioCornerHz = 250.0;   // kick and bass; higher lets voices in
constexpr double kEnvelopeCornerHz = 5.0;  // one hump per beat up to fast tempos
constexpr int kBeatsPerBar = 4;

double firstBeatFrames(double givenFrames, bool isOnPulse, double framesPerBeat) {
    if (isOnPulse) return givenFrames;
    const double halfBeat = framesPerBeat * 0.5;
    return halfBeat <= givenFrames ? givenFrames - halfBeat : givenFrames + halfBeat;
}

peakss::BeatInfo gridBeat(double frames, float intervalMs, int number) {
    peakss::BeatInfo beat;
    beat.pos = truncToInt32(frames);
    beat.interval = intervalMs;
    beat.group = number;
    beat.band = -1;
    return beat;
}

}  // namespace

bool SimpleEnvelopeMaker::create(int sampleRate, int length) {
    release();
    length_ = length;
    sampleRate_ = sampleRate;
    const double audioRate = sampleRate;
    audioLowPass_ = designFilter<LowPathFilter2D>(kAudioCornerHz, audioRate);
    envelopeLowPass_ = designFilter<LowPathFilter2D>(kEnvelopeCornerHz, audioRate / 128.0);
    envelope_.assign(ChunkCollector::valueCount(length), 0);
    chunks_.create(length);
    return true;
}

void SimpleEnvelopeMaker::reset() {
    chunks_.rewind();
    std::fill(envelope_.begin(), envelope_.end(), std::int16_t{0});
}

void SimpleEnvelopeMaker::putSample(const double* filtered, int frames) {
    chunks_.putSample(filtered, frames,
                      [this](double first, std::size_t index) { putLevel(first, index); });
}

// One value stands for the chunk: the filtered first frame.
void SimpleEnvelopeMaker::putLevel(double filteredFirst, std::size_t index) {
    envelope_[index] = truncToInt16(filterValue(*envelopeLowPass_, std::fabs(filteredFirst)));
}

float SimpleEnvelopeMaker::analyze(float bpm, peakss::BeatList& beats) const {
    if (!(bpm > 0.0F) || beats.empty()) return bpm;
    const double envelopeRate = sampleRate_ / 128.0;
    const double length = (60000.0 / static_cast<double>(bpm)) * envelopeRate / 1000.0;
    const BeatPhase phase = findBeatPhase(envelope_, envelopeRate, length, bpm, beats);
    const double period = findBeatPeriod(envelope_, phase.start, length, beats.size());

    const double beatSeconds = period / envelopeRate;
    const double framesPerBeat = sampleRate_ * beatSeconds;
    if (!(framesPerBeat >= ChunkCollector::kChunkFrames)) return bpm;
    const double given = beats.front().pos;
    layGrid(beatSeconds, firstBeatFrames(given, phase.isOnPulse, framesPerBeat), beats);
    return static_cast<float>(60.0 / beatSeconds);
}

void SimpleEnvelopeMaker::layGrid(double beatSeconds, double firstBeat,
                                  peakss::BeatList& beats) const {
    const auto intervalMs = static_cast<float>(beatSeconds * 1000.0);
    int number = beats.front().group;
    beats.clear();
    for (double i = 0.0;; i += 1.0) {
        // Compared before it is cut to 32 bits: a grid that runs to the largest length ends there.
        const double frames = i * sampleRate_ * beatSeconds + firstBeat + 0.5;
        if (!(std::trunc(frames) < length_)) return;
        beats.push_back(gridBeat(frames, intervalMs, number));
        // A number outside 1..4 is written once and then folded into the cycle.
        number = number % kBeatsPerBar + 1;
    }
}

void SimpleEnvelopeMaker::release() {
    length_ = 0;
    sampleRate_ = 0;
    chunks_.create(0);
    audioLowPass_.reset();
    envelopeLowPass_.reset();
    std::vector<std::int16_t>().swap(envelope_);
}

}  // namespace beatatlas
