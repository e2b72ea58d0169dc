// SPDX-License-Identifier: MIT
#include "view/LoudBand.h"

#include <cstddef>

#include "view/scaleBand.h"

namespace beatatlas {

void LoudBand::create(const DetectorTiming& timing, float ratio, float chunksPerSlot) {
    scaled_.resize(static_cast<std::size_t>(timing.blockLen));
    detector_.create(timing, ratio);
    sum_.create(chunksPerSlot);
}

void LoudBand::reset() {
    records_.reset();
    detector_.reset();
    sum_.reset();
}

void LoudBand::release() {
    scaled_ = {};
    records_.release();
}

void LoudBand::put(const float* band, int m) {
    loudest_ = scaleBand(band, scaled_.data(), m);
    detector_.put(records_, scaled_.data(), m, loudest_);
}

}  // namespace beatatlas
