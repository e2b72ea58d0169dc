// SPDX-License-Identifier: MIT
#include "peakss/tempoMatch.h"

namespace peakss {

float tempoTolerance(float referenceMs) {
    constexpr double kMostMs = 20.0;
    const double tolerance = (static_cast<double>(referenceMs) * 2400.0) / 60000.0;
    return static_cast<float>(tolerance >= kMostMs ? kMostMs : tolerance);
}

bool matchesTempo(float intervalMs, float referenceMs) {
    const float tolerance = tempoTolerance(referenceMs);
    const float low = referenceMs - tolerance;
    const float high = referenceMs + tolerance;
    const auto isInside = [low, high](float value) { return low < value && value < high; };
    return isInside(intervalMs) || isInside(2.0F * intervalMs) || isInside(intervalMs / 2.0F);
}

}  // namespace peakss
