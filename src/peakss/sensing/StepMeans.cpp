// SPDX-License-Identifier: MIT
#include "peakss/sensing/StepMeans.h"

#include <algorithm>
#include <cstddef>

#include "dsp/lanes/transpose.h"
#include "dsp/lanes/vectorLanes.h"

namespace peakss {

namespace {

constexpr int kUsualLength = 8;
constexpr int kLanes = 8;

using Half = beatatlas::Lanes<float, 4>;
using Floats = beatatlas::Lanes<float, kLanes>;

/** Adds samples 0 to 3 of eight steps, each in its lane, in order of time. */
BEATATLAS_LANES void addHalfSteps(const float* samples, Floats& sums) {
    Floats steps[4];
    for (std::ptrdiff_t step = 0; step < 4; ++step) {
        Half early;
        Half late;
        beatatlas::loadLanes(early, samples + step * kUsualLength);
        beatatlas::loadLanes(late, samples + (step + 4) * kUsualLength);
        steps[step] = __builtin_shufflevector(early, late, 0, 1, 2, 3, 4, 5, 6, 7);
    }
    beatatlas::transposeLanes<4>(steps);
    for (const Floats& sample : steps) sums += sample;
}

/** The means of `count` steps of eight samples, a multiple of the lanes; the same for every
 *  width. */
template <std::size_t>
struct UsualSteps {
    BEATATLAS_LANES static void run(const float* samples, int count, float* means) {
        for (std::ptrdiff_t step = 0; step < count; step += kLanes) {
            Floats sums{};
            addHalfSteps(samples + step * kUsualLength, sums);
            addHalfSteps(samples + step * kUsualLength + kUsualLength / 2, sums);
            sums /= static_cast<float>(kUsualLength);
            beatatlas::storeLanes(sums, means + step);
        }
    }
};

}  // namespace

int StepMeans::put(const float* samples, int n, float* means) {
    int steps = 0;
    for (int i = 0; i < n;) {
        if (open == 0 && length == kUsualLength) {
            const int usual = putUsualSteps(samples + i, n - i, means + steps);
            steps += usual;
            i += usual * kUsualLength;
            if (i == n) break;
        }
        const int end = i + std::min(length - open, n - i);
        open += end - i;
        for (; i < end; ++i) sum += samples[i];
        if (open < length) break;
        means[steps++] = sum / static_cast<float>(length);
        sum = 0.0F;
        open = 0;
    }
    return steps;
}

/** Eight steps at a time, as long as there are eight whole ones. */
int StepMeans::putUsualSteps(const float* samples, int n, float* means) {
    const int steps = n / (kLanes * kUsualLength) * kLanes;
    if (steps > 0) beatatlas::runInLanes<UsualSteps>(samples, steps, means);
    return steps;
}

}  // namespace peakss
