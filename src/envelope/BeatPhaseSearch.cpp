// SPDX-License-Identifier: MIT
#include "envelope/BeatPhaseSearch.h"

#include <algorithm>
#include <cstddef>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr float kSlowBpm = 100.0F;  // below it a beat has room for twice the slide
constexpr int kSlowRange = 160;     // trials beyond the first, one envelope value apart
constexpr int kFastRange = 80;

struct Slide {
    int range;       // trials beyond the first
    int halfRange;   // odd: half the range with its lowest bit set
    int leadValues;  // 100 ms: the smoothed level peaks after the beat
    int halfBeat;    // envelope values
    std::size_t beatCount;
};

struct LevelSums {
    std::int64_t onBeat = 0;
    std::int64_t offBeat = 0;
};

Slide planSlide(double envelopeRate, double beatLength, float bpm, std::size_t beatCount) {
    const int range = bpm < kSlowBpm ? kSlowRange : kFastRange;
    const auto minuteOfBeats = std::max<std::int64_t>(truncToInt32(bpm), 0);
    return {.range = range,
            .halfRange = (range / 2) | 1,
            .leadValues = truncToInt32(envelopeRate * 0.1 + 0.5),
            .halfBeat = truncToInt32(beatLength * 0.5 + 0.5),
            .beatCount = std::min(beatCount, static_cast<std::size_t>(minuteOfBeats))};
}

LevelSums sumLevels(const std::vector<std::int16_t>& envelope, const Slide& slide, int shift,
                    const peakss::BeatList& beats) {
    const auto end = static_cast<std::int64_t>(envelope.size());
    LevelSums sums;
    for (std::size_t i = 0; i < slide.beatCount; ++i) {
        const double beat = beats[i].pos / 128.0;
        const std::int64_t on =
            truncToInt32(((beat + slide.leadValues) - slide.halfRange) + shift + 0.5);
        if (on >= end) break;
        if (on >= 0) sums.onBeat += envelope[static_cast<std::size_t>(on)];
        const std::int64_t off = on + slide.halfBeat;
        if (off >= end) break;
        if (off >= 0) sums.offBeat += envelope[static_cast<std::size_t>(off)];
    }
    return sums;
}

/** The largest sum and the first slide position that reached it. */
struct BestSlide {
    std::int64_t sum;
    int shift = 0;

    void offer(std::int64_t otherSum, int otherShift) {
        if (otherSum > sum) *this = {otherSum, otherShift};
    }
};

}  // namespace

BeatPhase findBeatPhase(const std::vector<std::int16_t>& envelope, double envelopeRate,
                        double beatLength, float bpm, const peakss::BeatList& beats) {
    const Slide slide = planSlide(envelopeRate, beatLength, bpm, beats.size());
    const LevelSums first = sumLevels(envelope, slide, 0, beats);
    BestSlide on{first.onBeat};
    BestSlide off{first.offBeat};
    for (int shift = 1; shift <= slide.range; ++shift) {
        const LevelSums sums = sumLevels(envelope, slide, shift, beats);
        on.offer(sums.onBeat, shift);
        off.offer(sums.offBeat, shift);
    }
    // Off the pulse only beyond 1.2 times, in integers so that exactly 1.2 stays on it.
    const bool isOnPulse = off.sum * 5 <= on.sum * 6;
    const std::int64_t toPulse = isOnPulse ? on.shift : std::int64_t{slide.halfBeat} + off.shift;
    const std::int64_t firstBeat = truncToInt32(beats.front().pos / 128.0 + 0.5);
    return {isOnPulse, slide.leadValues - slide.halfRange + toPulse + firstBeat};
}

}  // namespace beatatlas
