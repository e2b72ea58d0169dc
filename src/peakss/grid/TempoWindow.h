// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "peakss/BeatInfo.h"
#include "peakss/grid/BpmCountTbl.h"

namespace peakss {

/** Counts the tempi in a span of a list ordered by position, and goes on from the span before: each
 *  beat is counted when it enters and taken out when it leaves, so that a window moved along a
 *  track, or one that grows, costs each beat once. Gives the counts of BpmCountTbl::count over the
 *  same span.
 *
 *  The list must outlive the window and stay unchanged. */
class TempoWindow {
public:
    /** An empty window counting into a table of so many slots and decimal digits. */
    TempoWindow(const BeatList& list, int slots, int digits);

    /** The span from list[first] up to the last beat at most span samples behind it. */
    void moveTo(int first, int span);

    /** The commonest slot in the window, the lowest of equals; −1 when no tempo lies in the
     *  table. */
    int commonestSlot() const;
    /** As above among the slots from low up to, not including, high, cut to the table. */
    int commonestSlot(int low, int high) const;

    /** The slot of a beat's tempo, inside the table or not. */
    int slotOf(int index) const { return slots_[static_cast<std::size_t>(index)]; }
    const BpmCountTbl& table() const { return table_; }

private:
    bool isWithin(int index, int first, int span) const;
    void add(int index, int hits);
    void restartAt(int first);

    const BeatList& list_;
    BpmCountTbl table_;
    std::vector<int> slots_;  // of each beat
    std::vector<std::int32_t> counts_;
    int first_ = 0;
    int end_ = 0;  // of the counted beats, not included
};

}  // namespace peakss
