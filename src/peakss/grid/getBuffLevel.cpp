// SPDX-License-Identifier: MIT
#include "peakss/grid/getBuffLevel.h"

#include <algorithm>
#include <cmath>

#include "dsp/truncation.h"

namespace peakss {

float getBuffLevel(int count, const float* left, const float* right, int* index) {
    constexpr float kSilence = 0.005F;
    if (left == nullptr || right == nullptr || index == nullptr) return 0.0F;
    const int firstIndex = *index;
    float best = 0.0F;
    for (int i = 0; i < count; ++i) {
        const float level = std::max(std::fabs(left[i]), std::fabs(right[i])) / 32767.0F;
        if (level < kSilence || !(level > best)) continue;
        best = level;
        *index = beatatlas::wrappingAdd(firstIndex, i);
    }
    return best;
}

}  // namespace peakss
