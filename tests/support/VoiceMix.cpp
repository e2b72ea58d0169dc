// SPDX-License-Identifier: MIT
#include "support/VoiceMix.h"

namespace beatatlas::test {

namespace {

constexpr double kFullScale = 32767.0;

float wholeSample(double value) {
    const double clipped = std::clamp(value, -kFullScale, kFullScale);
    // After a shift above zero, truncation always rounds down: one rule for both signs.
    return static_cast<float>(static_cast<std::int32_t>(clipped + 32768.5) - 32768);
}

}  // namespace

void VoiceMix::write(double level, float* left, float* right) const {
    const double scale = level * kFullScale;
    const auto count = static_cast<std::size_t>(end_ - from_);
    for (std::size_t i = 0; i < count; ++i) {
        left[i] = wholeSample(left_[i] * scale);
        right[i] = wholeSample(right_[i] * scale);
    }
}

}  // namespace beatatlas::test
