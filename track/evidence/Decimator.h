// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas::track::inner {

/** Keeps one sample of eight behind a linear-phase low-pass. Output m stands for input 8m; silence
 *  lies before the stream and after it.
 *
 *  Single precision, rounding to nearest, which the caller sees to, construction included. The same
 *  bits in every vector form and for blocks of every size. Life: construct → put() per block →
 *  finish(). */
class Decimator {
public:
    static constexpr int kFactor = 8;

    Decimator();

    /** Takes the next samples. @return the outputs that they complete, valid until the next call */
    const std::vector<float>& put(const float* samples, std::int64_t count);

    /** The outputs that were still waiting for samples: one for each eight begun. */
    const std::vector<float>& finish();

private:
    void filterBuffer();

    std::vector<float> taps_;    // kTaps, a zero after the last
    std::vector<float> buffer_;  // from the first sample that the next output needs
    std::vector<float> outputs_;
    std::int64_t samples_ = 0;
    std::int64_t made_ = 0;
};

}  // namespace beatatlas::track::inner
