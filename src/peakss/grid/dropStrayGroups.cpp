// SPDX-License-Identifier: MIT
#include "peakss/grid/dropStrayGroups.h"

#include <cstdint>
#include <limits>
#include <vector>

#include "dsp/processorYield.h"
#include "peakss/beatInterval.h"
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

GroupTempos measureGroupTempos(const BeatList& raw) {
    GroupTempos tempos;
    std::int64_t highest = std::numeric_limits<std::int64_t>::min();
    for (const BeatInfo& beat : raw) {
        beatatlas::yieldProcessor();
        const std::int32_t group = groupNumber(beat);
        if (group > highest) {
            highest = group;
            // An interval of 0 is no tempo yet; a later beat of the group may still have one.
            if (beat.interval != 0.0F) tempos.emplace(group, beat.interval);
            continue;
        }
        const auto next = tempos.lower_bound(group);
        if (next == tempos.end() || next->first == group) continue;
        if (matchesTempo(beat.interval, next->second)) tempos.emplace(group, beat.interval);
    }
    return tempos;
}

void dropStrayGroups(BeatList& raw, const GroupTempos& tempos) {
    std::vector<float> intervals;
    intervals.reserve(tempos.size());
    for (const auto& [group, interval] : tempos) intervals.push_back(interval);

    GroupTempos steady = tempos;
    dropRanges(steady, unsteadyTempoRuns(intervals, kGroupRuns));
    std::erase_if(raw,
                  [&steady](const BeatInfo& beat) { return !steady.contains(groupNumber(beat)); });
}

}  // namespace peakss
