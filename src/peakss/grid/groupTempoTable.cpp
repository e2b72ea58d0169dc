// SPDX-License-Identifier: MIT
#include "peakss/grid/groupTempoTable.h"

#include <limits>

#include "dsp/processorYield.h"
#include "peakss/grid/tempoMatch.h"

namespace peakss {

GroupTempos groupTempoTable(const BeatList& raw) {
    GroupTempos tempos;
    std::int64_t highest = std::numeric_limits<std::int64_t>::min();
    for (const BeatInfo& beat : raw) {
        beatatlas::yieldProcessor();
        const std::int32_t group = groupNumber(beat);
        if (group > highest) {
            highest = group;
            // An interval of 0 is no tempo yet; a later beat of the group may still tell it.
            if (beat.interval != 0.0F) tempos.emplace(group, beat.interval);
            continue;
        }
        const auto next = tempos.lower_bound(group);
        if (next == tempos.end() || next->first == group) continue;
        if (matchesTempo(beat.interval, next->second)) tempos.emplace(group, beat.interval);
    }
    return tempos;
}

}  // namespace peakss
