// SPDX-License-Identifier: MIT
#include "peakss/grid/discontinuousGroupRemoval.h"

#include <vector>

#include "peakss/grid/unsteadyTempoRuns.h"

namespace peakss {

namespace {

constexpr TempoRunRule kGroupRuns{
    .shortestRun = 2, .longestInterlude = 8, .shortestOpenRun = 1, .firstCountsAsHit = true};

void dropRanges(GroupTempos& tempos, const std::vector<ValueRange>& ranges) {
    auto group = tempos.begin();
    std::size_t i = 0;
    for (const ValueRange& range : ranges) {
        for (; i < range.first; ++i) ++group;
        for (; i < range.end; ++i) group = tempos.erase(group);
    }
}

}  // namespace

void discontinuousGroupRemoval(BeatList& raw, const GroupTempos& tempos) {
    std::vector<float> intervals;
    intervals.reserve(tempos.size());
    for (const auto& [group, interval] : tempos) intervals.push_back(interval);

    GroupTempos steady = tempos;
    dropRanges(steady, unsteadyTempoRuns(intervals, kGroupRuns));
    std::erase_if(raw,
                  [&steady](const BeatInfo& beat) { return !steady.contains(groupNumber(beat)); });
}

}  // namespace peakss
