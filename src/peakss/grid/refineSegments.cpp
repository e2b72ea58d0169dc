// SPDX-License-Identifier: MIT
#include "peakss/grid/refineSegments.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "dsp/processorYield.h"
#include "peakss/beatInterval.h"
#include "peakss/grid/BpmCountTbl.h"
#include "peakss/grid/TempoWindow.h"
#include "peakss/grid/beatLength.h"
#include "peakss/grid/beatSearch.h"
#include "peakss/grid/segments.h"

namespace peakss {

namespace {

class SegmentTally {
public:
    explicit SegmentTally(const BeatList& raw)
        : coarse_(raw, kCoarseSlots, kCoarseDigits), fine_(raw, kFineSlots, kFineDigits) {}

    // The commonest fine slot of the span near its commonest coarse one; −1 when it has no tempo.
    int commonestTempo(int first, int span) {
        coarse_.moveTo(first, span);
        fine_.moveTo(first, span);
        const int peak = coarse_.commonestSlot();
        if (peak < 0) return -1;
        return fine_.commonestSlot((peak - 1) * kFineSlotsPerCoarseSlot,
                                   (peak + 1) * kFineSlotsPerCoarseSlot);
    }

private:
    TempoWindow coarse_;
    TempoWindow fine_;
};

// The last segment is counted over the track's whole length, past its end: there is nothing behind
// it to count.
int spanTo(const BeatList& segments, std::size_t from, std::size_t next, int length) {
    if (next >= segments.size()) return length;
    const std::int64_t span = static_cast<std::int64_t>(segments[next].pos) - segments[from].pos;
    return static_cast<int>(std::min<std::int64_t>(span, std::numeric_limits<int>::max()));
}

void measure(BeatInfo& segment, const BeatList& raw, int span, SegmentTally& tally) {
    const int first = sampleToIndex(raw, segment.pos);
    if (first < 0) return;
    const int slot = tally.commonestTempo(first, span);
    if (slot < 0) return;
    segment.interval = fineSlotInterval(slot);
    segment.phase = 0.0F;
    setAnchorSpacing(segment, kQuartersPerBeat);
}

}  // namespace

void refineSegments(BeatList& segments, const BeatList& raw, int length) {
    // Neighbours take turns: a segment measured again after taking in the next one finds its own
    // tally still standing, and only goes on counting.
    std::array<SegmentTally, 2> tallies{SegmentTally(raw), SegmentTally(raw)};
    std::size_t held = 0;
    std::size_t next = 1;
    while (held < segments.size()) {
        beatatlas::yieldProcessor();
        BeatInfo& segment = segments[held];
        measure(segment, raw, spanTo(segments, held, next, length), tallies[held % 2]);
        if (held > 0 && matchesTempo(segment.interval, segments[held - 1].interval)) {
            --held;
            continue;
        }
        ++held;
        if (next >= segments.size()) break;
        segments[held] = segments[next++];
    }
    segments.resize(held);
}

}  // namespace peakss
