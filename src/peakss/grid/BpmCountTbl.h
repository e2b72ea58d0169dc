// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "peakss/BeatInfo.h"

namespace peakss {

/** A histogram of tempi: how often each tempo occurs among the beats in a part of a track.
 *
 *  Slot k stands for k / 10^digits BPM, rounded half up. The usual way is to find the commonest
 *  whole BPM in a table of 0 digits, then to look around it in a table of 1 digit.
 *
 *  Life: create() → count() per part → getAverageIndex(); create() again starts over.
 *  Memory: one int32 per slot, allocated in create() only. */
class BpmCountTbl {
public:
    BpmCountTbl() = default;
    BpmCountTbl(const BpmCountTbl&) = delete;
    BpmCountTbl& operator=(const BpmCountTbl&) = delete;
    virtual ~BpmCountTbl() = default;

    /** An empty table; slots and digits below 0 count as 0. */
    void create(int slots, int digits);

    /** The slot of a beat interval in ms; it may lie outside the table, and is below 0 for an
     *  interval of 0. */
    int intervalToSlot(double intervalMs) const;

    void clearTbl();

    /** Clears the table, then counts list[first] and the beats after it up to span samples behind
     *  it; a tempo outside the table counts nowhere. Returns the index of the first beat not
     *  counted, the list's size when there is none. A first outside the list counts nothing and
     *  returns the size as well. */
    int count(const BeatList& list, int first, int span);

    /** The commonest slot, the lowest of equals; −1 when nothing was counted. */
    int getAverageIndex() const;

    /** As above among the tempi from around − 1 up to, not including, around + 1, where around is a
     *  slot of a table of aroundDigits; a table that is no finer than that searches all its
     *  slots. */
    int getAverageIndex(int around, int aroundDigits) const;

    int slots() const { return static_cast<int>(counts_.size()); }
    int hits(int slot) const {
        return isInside(slot) ? counts_[static_cast<std::size_t>(slot)] : 0;
    }

private:
    bool isInside(int slot) const { return slot >= 0 && slot < slots(); }
    void addHit(double intervalMs);
    int commonestSlot(int low, int high) const;

    std::vector<std::int32_t> counts_;
    std::int32_t digits_ = 0;
    double scale_ = 1.0;  // slots per BPM
};

// The two resolutions in which the analysis counts tempi, up to 400 BPM: whole BPM find the tempo,
// tenths measure it.
inline constexpr int kCoarseSlots = 400;
inline constexpr int kCoarseDigits = 0;
inline constexpr int kFineSlots = 4000;
inline constexpr int kFineDigits = 1;
inline constexpr int kFineSlotsPerCoarseSlot = 10;

/** The beat interval in ms of a slot of the fine table; infinite for slot 0. */
inline float fineSlotInterval(int slot) {
    return static_cast<float>(60000.0 / (static_cast<double>(slot) / 10.0));
}

}  // namespace peakss
