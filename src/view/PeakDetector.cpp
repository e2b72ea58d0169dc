// SPDX-License-Identifier: MIT
#include "view/PeakDetector.h"

namespace beatatlas {

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
