// SPDX-License-Identifier: MIT
#include "dsp/sampleBlocks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "dsp/lanes/sampleLanes.h"
#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

namespace {

template <std::size_t kWidth>
struct LargestSum {
    using Frames = Lanes<std::int32_t, 2 * kWidth>;

    BEATATLAS_LANES static void run(const std::int16_t* stereo, int n, int* largest) {
        constexpr auto kStep = static_cast<std::ptrdiff_t>(2 * kWidth);
        Frames most{};
        std::ptrdiff_t i = 0;
        for (; i + kStep <= n; i += kStep) {
            Frames frames;
            loadLanes(frames, stereo + (2 * i));
            const Frames sums = (frames >> 16) + ((frames << 16) >> 16);
            const Frames signs = sums >> 31;
            const Frames magnitudes = (sums ^ signs) - signs;
            most = most > magnitudes ? most : magnitudes;
        }
        int all = 0;
        for (std::size_t lane = 0; lane < 2 * kWidth; ++lane) all = std::max<int>(all, most[lane]);
        for (; i < n; ++i) all = std::max(all, std::abs(stereo[2 * i] + stereo[2 * i + 1]));
        *largest = all;
    }
};

// The maximum of numbers is the same in any order.
template <std::size_t kWidth>
struct LargestMagnitude {
    using Values = Lanes<double, kWidth>;
    using Bits = Lanes<std::int64_t, kWidth>;

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
        Bits bits;
        loadLanes(bits, in);
        bits &= 0x7fffffffffffffff;
        Values magnitudes;
        loadLanes(magnitudes, &bits);
        most = most < magnitudes ? magnitudes : most;
    }
};

}  // namespace

double largestMagnitude(const double* in, int n) {
    double largest = 0.0;
    runInLanes<LargestMagnitude>(in, n, &largest);
    return largest;
}

int largestSum(const std::int16_t* stereo, int n) {
    int largest = 0;
    runInLanes<LargestSum>(stereo, n, &largest);
    return largest;
}

void monoOfBlock(const std::int16_t* stereo, double* out, int n) {
    runInLanes<MonoOfBlock>(stereo, out, n);
}

}  // namespace beatatlas
