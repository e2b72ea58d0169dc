// SPDX-License-Identifier: MIT
#include "view/PeakDetector.h"

namespace beatatlas {

bool PeakDetector::passesUnnoticed(int m, float loudest, float recordZero) const {
    const std::int64_t count = count_ + m;
    if (recordZero == kNoPeakLevel) return loudest <= floor_;
    if (count < timing_.minInterval) return loudest <= held_;
    return count <= timing_.holdTime && loudest < candidateLevel(held_);
}

void PeakDetector::create(const DetectorTiming& timing, float ratio) {
    timing_ = timing;
    ratio_ = ratio;
    reset();
}

void PeakDetector::reset() {
    count_ = 0;
    recordCount_ = 0;
    chunksSeen_ = 0;
    ended_ = false;
    held_ = 0.0F;
    decay_ = 0;
}

}  // namespace beatatlas
