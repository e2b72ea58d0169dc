// SPDX-License-Identifier: MIT
#include "peakss/grid/dropShortRuns.h"

#include <cstddef>
#include <vector>

#include "peakss/grid/unsteadyTempoRuns.h"

namespace peakss {

namespace {

// Two bars of matches make a run; one of less than eight bars that falls back to the earlier tempo
// is a fill. A run's first beat has nothing before it to match, and does not count.
constexpr TempoRunRule kBeatRuns{
    .shortestRun = 8, .longestInterlude = 32, .shortestOpenRun = 8, .firstCountsAsHit = false};

}  // namespace

void dropShortRuns(BeatList& raw) {
    std::vector<float> intervals;
    intervals.reserve(raw.size());
    for (const BeatInfo& beat : raw) intervals.push_back(beat.interval);

    std::size_t kept = 0;
    std::size_t i = 0;
    const auto keepUpTo = [&](std::size_t end) {
        while (i < end) raw[kept++] = raw[i++];
    };
    for (const ValueRange& range : unsteadyTempoRuns(intervals, kBeatRuns)) {
        keepUpTo(range.first);
        i = range.end;
    }
    keepUpTo(raw.size());
    raw.resize(kept);
}

}  // namespace peakss
