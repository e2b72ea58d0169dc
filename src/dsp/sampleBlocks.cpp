// SPDX-License-Identifier: MIT
#include "dsp/sampleBlocks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "dsp/sampleLanes.h"
#include "dsp/vectorLanes.h"

namespace beatatlas {

namespace {

// The maximum of numbers is the same in any order.
template <std::size_t kWidth>
struct LargestMagnitude {
    using Values = Lanes<double, kWidth>;

    BEATATLAS_LANES static void run(const double* in, int n, double* largest) {
        constexpr int kStep = static_cast<int>(kWidth);
        Values even{};
        Values odd{};
        int i = 0;
        for (; i + 2 * kStep <= n; i += 2 * kStep) {
            takeLarger(even, in + i);
            takeLarger(odd, in + i + kStep);
        }
        double most = 0.0;
        for (std::size_t lane = 0; lane < kWidth; ++lane)
            most = std::max(most, std::max(even[lane], odd[lane]));
        for (; i < n; ++i) most = std::max(most, std::abs(in[i]));
        *largest = most;
    }

    BEATATLAS_LANES static void takeLarger(Values& most, const double* in) {
        Values values;
        loadLanes(values, in);
        most = most < values ? values : most;
        most = most < -values ? -values : most;
    }
};

}  // namespace

double largestMagnitude(const double* in, int n) {
    double largest = 0.0;
    runInLanes<LargestMagnitude>(in, n, &largest);
    return largest;
}

void monoOfBlock(const std::int16_t* stereo, double* out, int n) {
    runInLanes<MonoOfBlock>(stereo, out, n);
}

}  // namespace beatatlas
