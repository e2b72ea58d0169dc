// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <cstddef>
#include <vector>

#include "dsp/FrameTransform.h"

namespace beatatlas::track::inner {

/** Windowed frames of real samples and their spectra, many at a time: two frames are the real and
 *  the imaginary part of one complex transform, whose spectrum has the symmetric half of the one
 *  and the antisymmetric of the other, and several transforms run side by side.
 *
 *  Single precision, rounding to nearest, which the caller sees to, construction included. The same
 *  bits in every vector form. Memory: 256 bytes a point, allocated when constructed. */
class FrameSpectra {
public:
    static constexpr int kFrames = 2 * FrameTransform::kFramesAtOnce;

    /** @param points  of a spectrum, a power of two of at least 64
     *  @param window  of a frame, at most so many samples; what is missing counts as silence after
     *                 it */
    FrameSpectra(int points, std::vector<float> window);

    /** Transforms the frames that begin at samples[starts[f]], f < count ≤ kFrames. */
    void transform(const float* samples, const std::ptrdiff_t* starts, int count);

    /** |X|² of the bins 0 … bins − 1 of the frames 2 × pair and 2 × pair + 1; bins is a multiple of
     *  16, at most half the points. */
    void powers(int pair, int bins, float* even, float* odd) const;

    /** One value of a frame's spectrum; 0 < bin < points. */
    std::complex<float> at(int frame, int bin) const;

    int points() const { return points_; }

private:
    const float* re(int pair) const { return re_.data() + pair * stride_; }
    const float* im(int pair) const { return im_.data() + pair * stride_; }

    int points_;
    // A line more than the points, so that the same point of all frames does not fall into one set
    // of the cache; what follows the last one repeats the first.
    std::ptrdiff_t stride_;
    FrameTransform transform_;
    std::vector<float> window_;
    std::vector<float> re_;
    std::vector<float> im_;
};

/** The periodic Hann window, whose shifted copies add up evenly. */
std::vector<float> periodicHann(int length);

/** The symmetric one, which ends on zeros on both sides. */
std::vector<float> symmetricHann(int length);

}  // namespace beatatlas::track::inner
