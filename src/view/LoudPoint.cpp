// SPDX-License-Identifier: MIT
#include "view/LoudPoint.h"

#include <algorithm>
#include <cmath>

#include "dsp/truncation.h"
#include "view/fullScale.h"

namespace beatatlas {

namespace {

/** From this step on the low band sets the colour. */
constexpr std::int32_t kStrongLowStep = 14;

}  // namespace

// The logarithm in double, its result cut to float before the offset is added.
std::int32_t decibelStep(float sum) {
    constexpr std::int32_t kTop = 30;
    if (sum <= 0.0F) return 0;
    const auto ratio = static_cast<double>(sum / kFullScale);
    const float step = static_cast<float>(20.0 * std::log10(ratio)) + 30.5F;
    return std::clamp(truncToInt32(step), 0, kTop);
}

LoudPoint makeLoudPoint(float average, float lowSum, float midSum, float highSum) {
    const float factor = ((lowSum / kFullScale) * 0.75F) + 0.25F;
    const float level = std::min(1.0F, factor) * average;
    return {level, {decibelStep(0.5F * lowSum), decibelStep(0.25F * midSum), decibelStep(highSum)}};
}

std::int32_t loudColor(const LoudPointSteps& steps) {
    const auto [low, mid, high] = steps;
    if (low < kStrongLowStep) return mid - high < 4 ? 5 : 4;
    if (mid < high) return low > high ? 2 : 3;
    return low > mid ? 0 : 1;
}

}  // namespace beatatlas
