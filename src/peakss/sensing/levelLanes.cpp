// SPDX-License-Identifier: MIT
#include "peakss/sensing/levelLanes.h"

#include <algorithm>
#include <cstddef>

#include "dsp/lanes/vectorLanes.h"

namespace peakss {

namespace {

using beatatlas::Lanes;
using beatatlas::loadLanes;
using beatatlas::runInLanes;
using beatatlas::storeLanes;

template <std::size_t kWidth>
struct LoudestLevel {
    using Levels = Lanes<float, 2 * kWidth>;

    BEATATLAS_LANES static void run(const float* levels, int n, float* loudest) {
        constexpr int kStep = static_cast<int>(2 * kWidth);
        Levels most{};
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Levels next;
            loadLanes(next, levels + i);
            most = most < next ? next : most;
        }
        float all = 0.0F;
        for (std::size_t lane = 0; lane < 2 * kWidth; ++lane) all = std::max(all, most[lane]);
        for (; i < n; ++i) all = std::max(all, levels[i]);
        *loudest = all;
    }
};

template <std::size_t kWidth>
struct Differences {
    BEATATLAS_LANES static void run(const float* in, const float* earlier, float* out, int n) {
        using Values = Lanes<float, 2 * kWidth>;
        constexpr int kStep = static_cast<int>(2 * kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Values now;
            Values before;
            loadLanes(now, in + i);
            loadLanes(before, earlier + i);
            storeLanes(now - before, out + i);
        }
        for (; i < n; ++i) out[i] = in[i] - earlier[i];
    }
};

template <std::size_t kWidth>
struct LessMean {
    BEATATLAS_LANES static void run(const float* in, float* out, int n, float length) {
        using Values = Lanes<float, 2 * kWidth>;
        constexpr int kStep = static_cast<int>(2 * kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Values inputs;
            Values sums;
            loadLanes(inputs, in + i);
            loadLanes(sums, out + i);
            const Values y = inputs - (sums / length);
            const Values above = y >= 0.0F ? y : Values{};
            storeLanes(above, out + i);
        }
        for (; i < n; ++i) {
            const float y = in[i] - (out[i] / length);
            out[i] = y >= 0.0F ? y : 0.0F;
        }
    }
};

}  // namespace

float loudestLevel(const float* levels, int n) {
    float loudest = 0.0F;
    runInLanes<LoudestLevel>(levels, n, &loudest);
    return loudest;
}

void subtractLevels(const float* levels, const float* earlier, float* out, int n) {
    runInLanes<Differences>(levels, earlier, out, n);
}

void subtractMeans(const float* levels, float* sums, int n, int length) {
    runInLanes<LessMean>(levels, sums, n, static_cast<float>(length));
}

}  // namespace peakss
