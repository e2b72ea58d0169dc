// SPDX-License-Identifier: MIT
#include "view/AverageStrip.h"

#include <algorithm>

#include "dsp/truncation.h"
#include "view/perHalfSecond.h"

namespace beatatlas {

void AverageStrip::create(float chunksPerPoint) {
    chunksPerPoint_ = chunksPerPoint;
    reset();
}

void AverageStrip::reset() {
    points_.fill(0.0F);
    index_ = 0;
    lastAveraged_ = 0;
}

void AverageStrip::put(std::int64_t chunk, bool ended,
                       const std::optional<AverageLevel::Average>& average) {
    if (index_ >= kLoudPoints) return;
    const int reached = truncToInt32(static_cast<float>(chunk) / chunksPerPoint_);
    const int target = ended ? kLoudPoints : std::min(reached, kLoudPoints - 1);
    if (target > index_) moveTo(target);
    if (average && index_ < kLoudPoints) add(*average);
}

// The points behind the one being filled are still 0.
void AverageStrip::moveTo(int target) {
    at(index_) = perHalfSecond(at(index_), chunksPerPoint_);
    index_ = target;
}

// A merging average joins the one before it, whose point may have been scaled already when the
// strip moved on.
void AverageStrip::add(const AverageLevel::Average& average) {
    if (!average.merges) {
        at(index_) += average.level;
        lastAveraged_ = index_;
    } else if (lastAveraged_ == index_) {
        at(index_) += average.level;
    } else {
        at(lastAveraged_) += perHalfSecond(average.level, chunksPerPoint_);
    }
}

}  // namespace beatatlas
