// SPDX-License-Identifier: MIT
#include "peakss/grid/findSegments.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "dsp/processorYield.h"
#include "dsp/truncation.h"
#include "peakss/beatInterval.h"
#include "peakss/grid/BpmCountTbl.h"
#include "peakss/grid/TempoWindow.h"
#include "peakss/grid/beatSearch.h"
#include "peakss/grid/segments.h"

namespace peakss {

using beatatlas::truncToInt32;

namespace {

constexpr int kWindowSeconds = 8;

struct SlotRange {
    int low;
    int end;  // not included
};

int windowSpan(int samplingRate) {
    const std::int64_t span = static_cast<std::int64_t>(samplingRate) * kWindowSeconds;
    return static_cast<int>(std::min<std::int64_t>(span, std::numeric_limits<int>::max()));
}

// The coarse slots within the tolerance of half the interval, of itself and of its double. The half
// millisecond shifts both limits toward slower tempi.
std::array<SlotRange, 3> relatedSlots(float interval) {
    const float tolerance = intervalTolerance(interval);
    const auto around = [interval, tolerance](float factor) {
        const float centre = interval * factor;
        return SlotRange{truncToInt32(60000.0F / ((tolerance + centre) + 0.5F)),
                         truncToInt32(60000.0F / ((centre - tolerance) + 0.5F))};
    };
    return {around(0.5F), around(1.0F), around(2.0F)};
}

bool contains(const std::array<SlotRange, 3>& ranges, int slot) {
    return std::any_of(ranges.begin(), ranges.end(), [slot](const SlotRange& range) {
        return slot >= range.low && slot < range.end;
    });
}

// The earliest beat of the tempo, its double or its half, not later than the first beat of the
// tempo itself.
int earliestRelated(const TempoWindow& window, int from, int firstOfTempo, float interval) {
    const std::array<SlotRange, 3> related = relatedSlots(interval);
    int i = from;
    while (i < firstOfTempo && !contains(related, window.slotOf(i))) ++i;
    return i;
}

}  // namespace

BeatList findSegments(const BeatList& raw, int samplingRate) {
    BeatList segments;
    TempoWindow window(raw, kCoarseSlots, kCoarseDigits);
    const int span = windowSpan(samplingRate);
    const int size = static_cast<int>(raw.size());
    float previous = 0.0F;
    int i = 0;
    while (i < size) {
        beatatlas::yieldProcessor();
        window.moveTo(i, span);
        const int peak = window.commonestSlot();
        if (peak >= 0) {
            const float interval = intervalOfBpm(peak);
            if (!matchesTempo(interval, previous)) {
                const int start = findFirstIdx(raw, i, peak, window.table());
                const int best = earliestRelated(window, i, start, interval);
                segments.push_back(segmentFrom(raw[static_cast<std::size_t>(best)],
                                               raw[static_cast<std::size_t>(start)].interval));
                i = best;
            }
            previous = interval;
        }
        ++i;
    }
    return segments;
}

}  // namespace peakss
