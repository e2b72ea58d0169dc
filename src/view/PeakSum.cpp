// SPDX-License-Identifier: MIT
#include "view/PeakSum.h"

#include <algorithm>

#include "dsp/truncation.h"
#include "view/perHalfSecond.h"

namespace beatatlas {

void PeakSum::create(float chunksPerSlot) {
    chunksPerSlot_ = chunksPerSlot;
    reset();
}

void PeakSum::reset() {
    points_.fill(0.0F);
    firstUnsummed_ = 0;
    index_ = 0;
    carry_ = 0.0F;
    previousChunk_ = 0;
}

void PeakSum::put(const PeakRecords& records, std::int32_t recordCount, bool ended,
                  std::int64_t chunk) {
    if (index_ >= kLoudPoints) return;
    const std::int32_t to = ended ? recordCount : recordCount - 1;
    if (!ended && to - firstUnsummed_ < 1) return;
    sumUpTo(to, records, ended, chunk);
    firstUnsummed_ = to;
}

// Time passes only from call to call: all records of one call stand at its chunk. The track's very
// last record never enters a sum.
void PeakSum::sumUpTo(std::int32_t to, const PeakRecords& records, bool ended, std::int64_t chunk) {
    carry_ += static_cast<float>(chunk - previousChunk_);
    previousChunk_ = chunk;
    for (std::int32_t i = firstUnsummed_; i < to; ++i) {
        if (carry_ >= chunksPerSlot_) closeSlot();
        if (index_ >= kLoudPoints) return;
        if (ended && i == to - 1) return;
        at(index_) += static_cast<float>(truncToInt32(records[i].level));
    }
}

/** Closes the slot, leaves those empty that passed without a peak, and opens the next: from there
 *  on all points are still 0. */
void PeakSum::closeSlot() {
    const float level = perHalfSecond(at(index_), chunksPerSlot_);
    std::fill_n(points_.begin() + index_, kPointsPerSlot, level);
    carry_ -= chunksPerSlot_;
    index_ += kPointsPerSlot;
    for (; carry_ >= chunksPerSlot_ && index_ < kLoudPoints; index_ += kPointsPerSlot)
        carry_ -= chunksPerSlot_;
}

}  // namespace beatatlas
