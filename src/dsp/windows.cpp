// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include "beatatlas/dsp.h"
#include "dsp/constants.h"
#include "dsp/narrowedCosine.h"

void hanning(int n, float* w) {
    const double period = static_cast<double>(n) + 1.0;
    std::array<double, 256> angles{};
    constexpr int kAtOnce = static_cast<int>(angles.size());
    for (int from = 0; from < n; from += kAtOnce) {
        const int count = std::min(kAtOnce, n - from);
        for (int i = 0; i < count; ++i) {
            const double k = static_cast<double>(from + i) + 1.0;
            angles[static_cast<std::size_t>(i)] = ((2.0 * beatatlas::kPi) * k) / period;
        }
        beatatlas::narrowedHann(angles.data(), w + from, count);
        if (count < kAtOnce) break;  // n may lie next to the largest int
    }
}
