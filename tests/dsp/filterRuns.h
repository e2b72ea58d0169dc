// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/TestNoise.h"

namespace beatatlas::test {

/** White noise of one seed, widened. */
inline std::vector<double> noise(std::size_t count) {
    const std::vector<float> narrow = whiteNoise(count, 12345);
    return {narrow.begin(), narrow.end()};
}

template <class Filter>
std::vector<double> runInBlocks(Filter& filter, const std::vector<double>& in, std::size_t block) {
    std::vector<double> out(in.size());
    for (std::size_t at = 0; at < in.size(); at += block) {
        const std::size_t count = std::min(block, in.size() - at);
        filter.operate(in.data() + at, out.data() + at, static_cast<int>(count));
    }
    return out;
}

template <class Filter>
std::vector<double> runWhole(Filter& filter, const std::vector<double>& in) {
    return runInBlocks(filter, in, in.size());
}

/** A filter that was never designed must copy its input. */
template <class Filter>
void expectCopiesItsInput() {
    Filter filter;
    const std::vector<double> in = noise(100);
    EXPECT_EQ(runInBlocks(filter, in, 7), in);
}

/** Blocks of any size must give the bits of one call over the whole signal. */
template <class Filter>
void expectBlocksLeaveNoTrace(double freq, double sampleRate) {
    const std::vector<double> in = noise(1000);
    Filter whole;
    whole.create(freq, sampleRate);
    const std::vector<double> expected = runWhole(whole, in);
    for (const std::size_t block : {1, 2, 3, 7, 128}) {
        Filter filter;
        filter.create(freq, sampleRate);
        EXPECT_EQ(runInBlocks(filter, in, block), expected) << "blocks of " << block;
    }
}

/** Blocks of no samples must leave the output alone. */
template <class Filter>
void expectEmptyBlocksWriteNothing() {
    Filter filter;
    const double in = 1.0;
    double out = -7.0;
    filter.operate(&in, &out, 0);
    filter.operate(&in, &out, -1);
    EXPECT_EQ(out, -7.0);
}

/** Gain of a settled filter for a sine, from the energies of its second half. */
template <class Filter>
double gainAt(Filter& filter, double freq, double sampleRate) {
    std::vector<double> in(static_cast<std::size_t>(sampleRate));
    for (std::size_t n = 0; n < in.size(); ++n) {
        in[n] = std::sin(2.0 * 3.14159265358979323846 * freq * static_cast<double>(n) / sampleRate);
    }
    const std::vector<double> out = runWhole(filter, in);
    double energyIn = 0.0;
    double energyOut = 0.0;
    for (std::size_t n = in.size() / 2; n < in.size(); ++n) {
        energyIn += in[n] * in[n];
        energyOut += out[n] * out[n];
    }
    return std::sqrt(energyOut / energyIn);
}

}  // namespace beatatlas::test
