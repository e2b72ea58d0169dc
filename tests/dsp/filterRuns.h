// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas::test {

/** White noise in 16-bit scale from a fixed linear congruential generator. */
inline std::vector<double> noise(std::size_t count) {
    std::vector<double> values(count);
    std::uint32_t state = 12345;
    for (double& value : values) {
        state = state * 1664525U + 1013904223U;
        value = static_cast<double>(state >> 16U) - 32768.0;
    }
    return values;
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
