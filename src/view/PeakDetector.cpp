// SPDX-License-Identifier: MIT
#include "view/PeakDetector.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace beatatlas {

namespace {

/** The loudest of m samples, 0 at the least. NaN counts for nothing, as in every comparison of the detectors. */
float loudestOf(const float* samples, int m) {
    constexpr int kLanes = 8;
    std::array<float, kLanes> lanes{};
    int i = 0;
    for (; i + kLanes <= m; i += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            lanes[lane] = samples[i + static_cast<int>(lane)] > lanes[lane]
                              ? samples[i + static_cast<int>(lane)]
                              : lanes[lane];
    }
    for (; i < m; ++i) lanes[0] = std::max(lanes[0], samples[i]);
    return *std::max_element(lanes.begin(), lanes.end());
}

}  // namespace

bool PeakDetector::passesUnnoticed(const float* samples, int m, float recordZero) const {
    const float loudest = loudestOf(samples, m);
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
