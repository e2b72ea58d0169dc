// SPDX-License-Identifier: MIT
#include "dsp/sampleBlocks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "dsp/lanes/transpose.h"
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

// A frame is one 32-bit lane, whichever channel lies in its upper half. Halving the sum toward zero
// gives the whole part of the mean.
template <std::size_t kWidth>
struct MeansOfBlock {
    using Frames = Lanes<std::int32_t, kWidth>;
    using Values = Lanes<double, kWidth>;

    BEATATLAS_LANES static void run(const std::int16_t* stereo, double* means, double* wholes,
                                    int n) {
        constexpr std::ptrdiff_t kStep = kWidth;
        std::ptrdiff_t i = 0;
        for (; i + kStep <= n; i += kStep) {
            Frames frames;
            loadLanes(frames, stereo + (2 * i));
            const Frames sums = (frames >> 16) + ((frames << 16) >> 16);
            const Frames halves = (sums - (sums >> 31)) >> 1;
            Values values;
            convertLanes<kWidth>(sums, values);
            storeLanes(Values(values * 0.5), means + i);
            convertLanes<kWidth>(halves, values);
            storeLanes(values, wholes + i);
        }
        for (; i < n; ++i) {
            const int sum = stereo[2 * i] + stereo[(2 * i) + 1];
            const int half = sum / 2;
            means[i] = static_cast<double>(sum) * 0.5;
            wholes[i] = static_cast<double>(half);
        }
    }
};

template <std::size_t kWidth>
struct WidenBlock {
    BEATATLAS_LANES static void run(const float* in, double* out, int n) {
        constexpr int kStep = static_cast<int>(kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Lanes<float, kWidth> values;
            loadLanes(values, in + i);
            storeLanes(__builtin_convertvector(values, Lanes<double, kWidth>), out + i);
        }
        for (; i < n; ++i) out[i] = static_cast<double>(in[i]);
    }
};

/** The magnitudes of float lanes. */
template <std::size_t kCount>
BEATATLAS_LANES void storeMagnitudes(const Lanes<float, kCount>& values, float* out) {
    Lanes<std::uint32_t, kCount> bits;
    loadLanes(bits, &values);
    bits &= 0x7fffffffU;
    storeLanes(bits, out);
}

template <std::size_t kWidth>
struct MagnitudesOfBlock {
    BEATATLAS_LANES static void run(const double* in, float* out, int n) {
        constexpr int kStep = static_cast<int>(kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Lanes<double, kWidth> values;
            loadLanes(values, in + i);
            storeMagnitudes<kWidth>(__builtin_convertvector(values, Lanes<float, kWidth>), out + i);
        }
        for (; i < n; ++i) out[i] = std::fabs(static_cast<float>(in[i]));
    }
};

/** Eight rows at a time, the same for every width: rows 0 to 3 in the lower lanes, 4 to 7 in the
 *  upper ones. */
template <std::size_t>
struct MagnitudesOfRows {
    BEATATLAS_LANES static void run(const std::array<float, 4>* rows, float* const* out, int n) {
        int i = 0;
        for (; i + 8 <= n; i += 8) splitEight(rows + i, out, i);
        for (; i < n; ++i)
            for (std::size_t s = 0; s < 4; ++s) out[s][i] = std::fabs(rows[i][s]);
    }

    BEATATLAS_LANES static void splitEight(const std::array<float, 4>* rows, float* const* out,
                                           int i) {
        Lanes<float, 8> pairs[4];
        for (std::size_t k = 0; k < 4; ++k) {
            Lanes<float, 4> early;
            Lanes<float, 4> late;
            loadLanes(early, rows[k].data());
            loadLanes(late, rows[k + 4].data());
            pairs[k] = __builtin_shufflevector(early, late, 0, 1, 2, 3, 4, 5, 6, 7);
        }
        transposeLanes<4>(pairs);
        for (std::size_t s = 0; s < 4; ++s) storeMagnitudes<8>(pairs[s], out[s] + i);
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

void meansOfBlock(const std::int16_t* stereo, double* means, double* wholes, int n) {
    runInLanes<MeansOfBlock>(stereo, means, wholes, n);
}

void widenBlock(const float* in, double* out, int n) {
    runInLanes<WidenBlock>(in, out, n);
}

void magnitudesOfBlock(const double* in, float* out, int n) {
    runInLanes<MagnitudesOfBlock>(in, out, n);
}

void magnitudesOfRows(const std::array<float, 4>* rows, const std::array<float*, 4>& out, int n) {
    runInLanes<MagnitudesOfRows>(rows, out.data(), n);
}

}  // namespace beatatlas
