// SPDX-License-Identifier: MIT
#include "peakss/grid/BpmCountTbl.h"

#include <algorithm>
#include <cstddef>

#include "dsp/truncation.h"

namespace peakss {

using beatatlas::truncToInt32;

namespace {

constexpr double kMsPerMinute = 60000.0;

// By multiplication, exact in every rounding mode, which pow does not promise.
double powerOfTen(int exponent) {
    double power = 1.0;
    for (int i = 0; i < exponent; ++i) power *= 10.0;
    return power;
}

}  // namespace

void BpmCountTbl::create(int slots, int digits) {
    counts_.assign(static_cast<std::size_t>(std::max(slots, 0)), 0);
    digits_ = std::max(digits, 0);
    scale_ = powerOfTen(digits_);
}

int BpmCountTbl::intervalToSlot(double intervalMs) const {
    // One decimal more than the table shows, so that the 5 rounds half up whatever the rounding
    // mode.
    return truncToInt32(((kMsPerMinute / intervalMs) * scale_) * 10.0 + 5.0) / 10;
}

void BpmCountTbl::clearTbl() {
    std::fill(counts_.begin(), counts_.end(), 0);
}

void BpmCountTbl::addHit(double intervalMs) {
    const int slot = intervalToSlot(intervalMs);
    if (isInside(slot)) ++counts_[static_cast<std::size_t>(slot)];
}

int BpmCountTbl::count(const BeatList& list, int first, int span) {
    clearTbl();
    const int size = static_cast<int>(list.size());
    if (first < 0 || first >= size) return size;
    const auto origin = static_cast<std::int64_t>(list[static_cast<std::size_t>(first)].pos);
    addHit(static_cast<double>(list[static_cast<std::size_t>(first)].interval));
    int i = first + 1;
    for (; i < size; ++i) {
        const BeatInfo& beat = list[static_cast<std::size_t>(i)];
        if (beat.pos - origin > span) break;
        addHit(static_cast<double>(beat.interval));
    }
    return i;
}

int BpmCountTbl::getAverageIndex() const {
    return commonestSlot(0, slots());
}

int BpmCountTbl::getAverageIndex(int around, int aroundDigits) const {
    if (aroundDigits >= digits_) return getAverageIndex();
    const auto centre = static_cast<double>(around);
    const double aroundScale = powerOfTen(aroundDigits);
    const int low = truncToInt32(((centre - 1.0) * scale_) / aroundScale);
    const int high = truncToInt32(((centre + 1.0) * scale_) / aroundScale);
    return commonestSlot(std::max(low, 0), std::min(high, slots()));
}

int BpmCountTbl::commonestSlot(int low, int high) const {
    int winner = -1;
    std::int32_t most = 0;
    for (int slot = low; slot < high; ++slot) {
        const std::int32_t hitsHere = counts_[static_cast<std::size_t>(slot)];
        if (hitsHere <= most) continue;
        most = hitsHere;
        winner = slot;
    }
    return winner;
}

}  // namespace peakss
