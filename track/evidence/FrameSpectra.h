// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <cstddef>
#include <vector>

#include "dsp/FrameTransform.h"

namespace beatatlas::track::inner {

/** Hann-windowed frames of real samples and their spectra, many at a time: two frames are the real and the imaginary
 *  part of one complex transform, whose spectrum has the symmetric half of the one and the antisymmetric of the other,
 *  and several transforms run side by side.
 *
 *  Single precision, rounding to nearest, which the caller sees to, construction included. The same bits in every
 *  vector form. Memory: 0.3 MB, allocated when constructed. */
class FrameSpectra {
public:
    static constexpr int kLength = 1024;  // samples of a frame
    static constexpr int kFrames = 2 * FrameTransform::kFramesAtOnce;

    FrameSpectra();

    /** Transforms the frames that begin at samples[starts[f]], f < count ≤ kFrames. */
    void transform(const float* samples, const std::ptrdiff_t* starts, int count);

    /** |X|² of the bins 0 … bins − 1 of the frames 2 × pair and 2 × pair + 1; bins is a multiple of 16, at most half a
     *  frame. */
    void powers(int pair, int bins, float* even, float* odd) const;

    /** One value of a frame's spectrum; 0 < bin < kLength. */
    std::complex<float> at(int frame, int bin) const;

private:
    const float* re(int pair) const { return re_.data() + pair * kStride; }
    const float* im(int pair) const { return im_.data() + pair * kStride; }

    // A line more than the frame, so that the same point of all frames does not fall into one set of the cache; the
    // point behind the last one repeats the first.
    static constexpr std::ptrdiff_t kStride = kLength + 16;

    FrameTransform transform_;
    std::vector<float> window_;
    std::vector<float> re_;
    std::vector<float> im_;
};

}  // namespace beatatlas::track::inner
