// SPDX-License-Identifier: MIT
#include "peakss/StepMeans.h"

#include <algorithm>
#include <cstring>

#include "dsp/VectorForm.h"

namespace peakss {

namespace {

constexpr int kUsualLength = 8;
constexpr int kLanes = 4;

using Floats = float __attribute__((vector_size(4 * kLanes)));

BEATATLAS_LANES void load(const float* from, Floats& lanes) {
    std::memcpy(&lanes, from, sizeof lanes);
}

/** Adds samples 0 to 3 of four steps, each in its lane, in order of time. */
BEATATLAS_LANES void addHalfSteps(const float* samples, Floats& sums) {
    Floats steps[kLanes];
    for (int step = 0; step < kLanes; ++step) load(samples + step * kUsualLength, steps[step]);
    const Floats early01 = __builtin_shufflevector(steps[0], steps[1], 0, 4, 1, 5);
    const Floats early23 = __builtin_shufflevector(steps[2], steps[3], 0, 4, 1, 5);
    const Floats late01 = __builtin_shufflevector(steps[0], steps[1], 2, 6, 3, 7);
    const Floats late23 = __builtin_shufflevector(steps[2], steps[3], 2, 6, 3, 7);
    sums += __builtin_shufflevector(early01, early23, 0, 1, 4, 5);
    sums += __builtin_shufflevector(early01, early23, 2, 3, 6, 7);
    sums += __builtin_shufflevector(late01, late23, 0, 1, 4, 5);
    sums += __builtin_shufflevector(late01, late23, 2, 3, 6, 7);
}

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

/** Four steps at a time, as long as there are four whole ones. */
int StepMeans::putUsualSteps(const float* samples, int n, float* means) const {
    const auto divisor = static_cast<float>(length);
    int steps = 0;
    for (; (steps + kLanes) * kUsualLength <= n; steps += kLanes) {
        Floats sums{};
        addHalfSteps(samples + steps * kUsualLength, sums);
        addHalfSteps(samples + steps * kUsualLength + kUsualLength / 2, sums);
        sums /= divisor;
        std::memcpy(means + steps, &sums, sizeof sums);
    }
    return steps;
}

}  // namespace peakss
