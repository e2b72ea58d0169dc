// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <cstddef>
#include <vector>

#include "dsp/FrameTransform.h"

namespace beatatlas::track::inner {

/** Spectra of windowed frames of real samples, many at a time. Two frames are the real and the
 *  imaginary part of one complex transform; the symmetry of their spectra separates them again.
 *  Several transforms run side by side.
 *
 *  Single precision; the caller sets rounding to nearest, for construction too. The same bits in
 *  every vector form. Memory: 256 bytes a point, allocated when constructed. */
class FrameSpectra {
public:
    static constexpr int kFrames = 2 * FrameTransform::kFramesAtOnce;

    /** @param points  of a spectrum, a power of two of at least 64
     *  @param window  one weight for each sample of a frame, at most `points`; a shorter frame is
     *                 padded with zeros at its end */
    FrameSpectra(int points, std::vector<float> window);

    /** Transforms the frames that begin at samples[starts[f]], f < count ≤ kFrames. */
    void transform(const float* samples, const std::ptrdiff_t* starts, int count);

    /** |X|² of the bins 0 … bins − 1 of the frames 2 × pair (even) and 2 × pair + 1 (odd); bins is
     *  a multiple of 16, at most half the points. */
    void powers(int pair, int bins, float* even, float* odd) const;

    /** One value of a frame's spectrum; 0 < bin < points. */
    std::complex<float> at(int frame, int bin) const;

    int points() const { return points_; }

private:
    const float* re(int pair) const { return re_.data() + pair * stride_; }
    const float* im(int pair) const { return im_.data() + pair * stride_; }

    int points_;
    // One cache line more than the points, so that the same point of all frames does not fall into
    // one set of the cache. The value after the last point repeats the first.
    std::ptrdiff_t stride_;
    FrameTransform transform_;
    std::vector<float> window_;
    std::vector<float> re_;
    std::vector<float> im_;
};

/** The periodic Hann window, whose shifted copies add up to a constant. */
std::vector<float> periodicHann(int length);

/** The symmetric Hann window, which is zero at both ends. */
std::vector<float> symmetricHann(int length);

}  // namespace beatatlas::track::inner
