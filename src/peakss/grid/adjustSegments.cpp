// SPDX-License-Identifier: MIT
// For each segment, a search over pulses: intervals around the measured one, and for each of them
// anchors every 4, 2 and 1 beats from any origin in the first 4, 2 or 1 beats of the segment.
// A pulse with half the spacing has twice the chances to score; doubling the best score with each
// halving makes spacings compete on equal terms, and a clear hit at the measured interval ends the
// search.
#include "peakss/grid/adjustSegments.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "dsp/processorYield.h"
#include "dsp/truncation.h"
#include "peakss/grid/BeatInfoFinder.h"
#include "peakss/grid/SnapWalkScorer.h"
#include "peakss/grid/beatLength.h"
#include "peakss/grid/segments.h"

namespace peakss {

using beatatlas::truncToInt32;

namespace {

constexpr double kOriginStepSamples = 96.0;
constexpr double kWidestSpacingBeats = 4.0;
constexpr double kFarthestOffsetMs = 3.0;  // not included

struct SearchRange {
    int lower;
    int upper;
};

// One interval under trial.
struct Pulse {
    double interval;  // ms
    double beatSamples;
    int tolerance;  // samples
    SearchRange range;
};

struct Winner {
    double start;  // samples
    double interval;
    double spacingBeats;
    int skippedBeats;
};

// 0, +1, −1, +2, −2 ms.
double nextOffset(double offsetMs) {
    const double mirrored = -offsetMs;
    return mirrored >= 0.0 ? mirrored + 1.0 : mirrored;
}

// How far a segment may reach across its boundary: up to an eighth of a beat behind the raw beat
// before it.
std::int64_t boundaryLimit(const BeatList& raw, std::int32_t boundary, int eighth) {
    const auto beat = static_cast<std::size_t>(BeatInfoFinder::findIndex(raw, boundary));
    if (beat >= 1) return static_cast<std::int64_t>(raw[beat - 1].pos) + eighth;
    return static_cast<std::int64_t>(raw[beat].pos) - eighth;
}

// The start of a segment, or earlier, but not before the segment before it, and not before the
// track.
int searchLimit(std::int32_t start, std::int32_t startBefore, std::int64_t limit) {
    const std::int64_t earliest = std::max<std::int64_t>(startBefore, limit);
    return static_cast<int>(std::max<std::int64_t>(0, std::min<std::int64_t>(start, earliest)));
}

class SegmentFit {
public:
    SegmentFit(const BeatList& segments, std::size_t index, const BeatList& raw, int length,
               int samplingRate, SnapWalkScorer& scorer)
        : segments_(segments), index_(index), raw_(raw), length_(length),
          samplingRate_(samplingRate), scorer_(scorer) {}

    std::optional<Winner> search() {
        const auto measured = static_cast<double>(segments_[index_].interval);
        for (double offset = 0.0; offset < kFarthestOffsetMs; offset = nextOffset(offset)) {
            const Pulse pulse = makePulse(measured + offset);
            if (!isWalkableBeat(pulse.beatSamples, samplingRate_)) continue;
            if (tryPulse(pulse, offset == 0.0)) break;
        }
        return winner_;
    }

private:
    Pulse makePulse(double interval) const {
        const double beatSamples = samplesPerMs(samplingRate_) * interval;
        return {interval, beatSamples, snapTolerance(beatSamples, samplingRate_),
                searchRange(truncToInt32(beatSamples * 0.125))};
    }

    SearchRange searchRange(int eighth) const {
        const auto boundary = [this, eighth](std::size_t segment) {
            const std::int32_t start = segments_[segment].pos;
            return searchLimit(start, segments_[segment - 1].pos,
                               boundaryLimit(raw_, start, eighth));
        };
        const bool isFirst = index_ == 0;
        const bool isLast = index_ + 1 >= segments_.size();
        return {isFirst ? 0 : boundary(index_), isLast ? length_ : boundary(index_ + 1)};
    }

    // True when the search can end.
    bool tryPulse(const Pulse& pulse, bool isMeasured) {
        double spacing = kWidestSpacingBeats;
        for (; spacing >= 1.0; spacing *= 0.5) {
            tryOrigins(pulse, spacing);
            if (isMeasured && isClearHit(pulse, spacing)) return true;
            bestScore_ *= 2.0;
        }
        // Back to the scale of the widest spacing.
        for (; spacing < kWidestSpacingBeats; spacing *= 2.0) bestScore_ *= 0.5;
        return false;
    }

    void tryOrigins(const Pulse& pulse, double spacing) {
        const auto [lower, upper] = pulse.range;
        const double step = spacing * pulse.beatSamples;
        const double end = std::min(lower + step, static_cast<double>(upper));
        scorer_.setPulse(upper, step, pulse.tolerance);
        for (double x = lower; x < end; x += kOriginStepSamples) {
            double firstHit = -1.0;
            const double score = scorer_.score(x, firstHit);
            if (!(score > bestScore_)) continue;
            bestScore_ = score;
            takeWinner(pulse, spacing, firstHit >= 0.0 ? firstHit : x);
        }
    }

    void takeWinner(const Pulse& pulse, double spacing, double reference) {
        const int skipped = truncToInt32((reference - pulse.range.lower) / pulse.beatSamples);
        const double start = reference - skipped * pulse.beatSamples;
        winner_ = Winner{start, pulse.interval, spacing, skipped};
    }

    bool isClearHit(const Pulse& pulse, double spacing) const {
        if (!winner_) return false;
        const double samples = static_cast<double>(pulse.range.upper) - pulse.range.lower;
        const double fullScore = pulse.tolerance * (samples / pulse.beatSamples);
        return fullScore * 0.5 < spacing * bestScore_;
    }

    const BeatList& segments_;
    std::size_t index_;
    const BeatList& raw_;
    int length_;  // of the track, samples
    int samplingRate_;
    SnapWalkScorer& scorer_;
    double bestScore_ = 0.0;  // at the scale of the spacing under trial
    std::optional<Winner> winner_;
};

void apply(const Winner& winner, BeatInfo& segment) {
    segment.pos = truncToInt32(winner.start);
    segment.interval = static_cast<float>(winner.interval);
    setAnchorSpacing(segment, truncToInt32(winner.spacingBeats * kQuartersPerBeat));
    setSkippedBeats(segment, winner.skippedBeats);
}

}  // namespace

void adjustSegments(BeatList& segments, const BeatList& raw, int length, int samplingRate) {
    if (raw.empty()) return;
    SnapWalkScorer scorer(raw);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        beatatlas::yieldProcessor();
        SegmentFit fit(segments, i, raw, length, samplingRate, scorer);
        if (const std::optional<Winner> winner = fit.search()) apply(*winner, segments[i]);
    }
}

}  // namespace peakss
