// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas::track::inner {

/** Keeps one sample in eight after a linear-phase low-pass. Output m is centred on input 8m; the
 *  stream is padded with silence on both sides.
 *
 *  Single precision; the caller sets rounding to nearest, for construction too. The same bits in
 *  every vector form and for blocks of every size. Life: construct → put() per block → finish(). */
class Decimator {
public:
    static constexpr int kFactor = 8;

    Decimator();

    /** Takes the next samples. @return the outputs they complete, valid until the next call */
    const std::vector<float>& put(const float* samples, std::int64_t count);

    /** The remaining outputs, padded with silence: in all there is one output for every eight
     *  samples or part of eight. */
    const std::vector<float>& finish();

private:
    void filterBuffer();

    // kTaps weights; the last one is zero.
    std::vector<float> taps_;
    // Begins at the first sample that the next output needs.
    std::vector<float> buffer_;
    std::vector<float> outputs_;
    std::int64_t samples_ = 0;
    std::int64_t made_ = 0;
};

}  // namespace beatatlas::track::inner
