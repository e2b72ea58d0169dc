// SPDX-License-Identifier: MIT
#include "peakss/grid/tempoMatch.h"

#include "peakss/beatInterval.h"

namespace peakss {

bool matchesTempo(float intervalMs, float referenceMs) {
    const float tolerance = intervalTolerance(referenceMs);
    const float low = referenceMs - tolerance;
    const float high = referenceMs + tolerance;
    const auto isInside = [low, high](float value) { return low < value && value < high; };
    return isInside(intervalMs) || isInside(2.0F * intervalMs) || isInside(intervalMs / 2.0F);
}

}  // namespace peakss
