// SPDX-License-Identifier: MIT
#include "view/DotsSum.h"

#include <algorithm>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

/** The first two thirds of a second add nothing: the filters are still settling and the held level
 *  means little. */
constexpr std::int64_t kStartUpChunks = 50;

/** The whole-number form of bringing a sum to half a second; absurd sums wrap. */
std::int32_t perHalfSecond(std::int32_t sum, std::int32_t chunks) {
    const auto product = static_cast<std::uint32_t>(sum) * 75U;
    return static_cast<std::int32_t>(product) / (chunks * 2);
}

}  // namespace

void DotsSum::create(std::int32_t chunksPerDot) {
    chunksPerDot_ = chunksPerDot;
    reset();
}

void DotsSum::reset() {
    dots_.fill(0);
    firstUnsummed_ = 0;
    index_ = 0;
}

void DotsSum::put(const PeakRecords& records, std::int32_t recordCount, bool ended,
                  std::int64_t chunk) {
    if (index_ >= kDots) return;
    const auto reached = static_cast<int>(std::min<std::int64_t>(chunk / chunksPerDot_, kDots - 1));
    const int target = ended ? kDots : reached;
    if (target > index_) moveTo(target);
    // Of several new peaks only the first counts; those of the start-up are dropped, not put off.
    const bool hasNew = recordCount > firstUnsummed_;
    if (hasNew && index_ < kDots && chunk > kStartUpChunks)
        at(index_) = wrappingAdd(at(index_), truncToInt32(records[firstUnsummed_].level900));
    firstUnsummed_ = recordCount;
}

void DotsSum::moveTo(int target) {
    at(index_) = perHalfSecond(at(index_), chunksPerDot_);
    const int end = std::min(target + 1, kDots);
    std::fill(dots_.begin() + index_ + 1, dots_.begin() + end, 0);
    index_ = target;
}

}  // namespace beatatlas
