// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace peakss {

/** Cuts a signal into steps and averages each, in order of time and in single precision. */
struct StepMeans {
    /** Samples per step, at least 1. */
    std::int32_t length;
    /** Samples in the step that is not complete yet, below length. */
    std::int32_t open;
    /** Sum of these. */
    float sum = 0.0F;

    /** Takes n samples and writes the mean of each step that they complete; returns how many these
     *  are. */
    int put(const float* samples, int n, float* means);

private:
    static int putUsualSteps(const float* samples, int n, float* means);
};

}  // namespace peakss
