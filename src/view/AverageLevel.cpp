// SPDX-License-Identifier: MIT
#include "view/AverageLevel.h"

#include <cmath>

#include "view/fullScale.h"

namespace beatatlas {

namespace {

constexpr int kMostChunks = 9;

}  // namespace

void AverageLevel::create(int blockLen) {
    blockLen_ = blockLen;
    reset();
}

void AverageLevel::reset() {
    sum_ = 0.0F;
    chunks_ = 0;
    mergePending_ = false;
}

std::optional<AverageLevel::Average> AverageLevel::put(const float* samples, int m,
                                                       bool peakInChunk) {
    float sum = sum_;
    for (int i = 0; i < m; ++i) sum += std::abs(samples[i] * kFullScale);
    sum_ = sum;
    ++chunks_;
    if (chunks_ < kMostChunks && !peakInChunk) return std::nullopt;
    // Whole blocks, also when the track's last one was shorter.
    const Average average{sum_ / static_cast<float>(chunks_ * blockLen_), mergePending_};
    mergePending_ = peakInChunk;
    sum_ = 0.0F;
    chunks_ = 0;
    return average;
}

}  // namespace beatatlas
