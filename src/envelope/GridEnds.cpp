// SPDX-License-Identifier: MIT
#include "envelope/GridEnds.h"

#include <cstdint>
#include <limits>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr int kBeatsPerBar = 4;
constexpr int kNoStep = std::numeric_limits<std::int32_t>::min();

/** Frames of a beat, rounded; kNoStep for an interval that is not a number or absurdly long. */
int framesOfBeat(const peakss::BeatInfo& beat, int sampleRate) {
    return truncToInt32(static_cast<float>(sampleRate) * beat.interval / 1000.0F + 0.5F);
}

}  // namespace

void fitTail(peakss::BeatList& beats, int sampleRate, int length) {
    const peakss::BeatInfo last = beats.back();
    if (last.pos >= length) {
        beats.pop_back();
        return;
    }
    const int step = framesOfBeat(last, sampleRate);
    const std::int64_t next = std::int64_t{last.pos} + step;
    if (step == kNoStep || next >= length) return;
    beats.push_back(last);
    beats.back().pos = static_cast<std::int32_t>(next);
    beats.back().group = last.group % kBeatsPerBar + 1;
}

void fitHead(peakss::BeatList& beats, int sampleRate) {
    if (beats.empty()) return;
    const peakss::BeatInfo first = beats.front();
    if (first.pos < 0) {
        beats.erase(beats.begin());
        return;
    }
    const int step = framesOfBeat(first, sampleRate);
    const std::int64_t previous = std::int64_t{first.pos} - step;
    if (step == kNoStep || previous < 0) return;
    beats.insert(beats.begin(), first);
    beats.front().pos = static_cast<std::int32_t>(previous);
    // Three on is one back in the cycle of four.
    beats.front().group = (first.group + 2) % kBeatsPerBar + 1;
}

}  // namespace beatatlas
