// SPDX-License-Identifier: MIT
#include "view/LoudBand.h"

#include <cmath>
#include <cstddef>

#include "view/fullScale.h"

namespace beatatlas {

void LoudBand::create(const DetectorTiming& timing, float ratio, float chunksPerSlot) {
    scaled_.resize(static_cast<std::size_t>(timing.blockLen));
    detector_.create(timing, ratio);
    sum_.create(chunksPerSlot);
}

void LoudBand::reset() {
    filter_.reset();
    records_.reset();
    detector_.reset();
    sum_.reset();
}

void LoudBand::release() {
    filter_.reset();
    scaled_ = {};
    records_.release();
}

void LoudBand::put(const float* in, const float* given, int m) {
    float* scaled = scaled_.data();
    if (given != nullptr) {
        for (int i = 0; i < m; ++i) scaled[i] = given[i] * kFullScale;
    } else {
        filter_->operate(in, scaled, m);
        for (int i = 0; i < m; ++i) scaled[i] = std::abs(scaled[i]) * kFullScale;
    }
    detector_.put(records_, scaled, m);
}

}  // namespace beatatlas
