// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace beatatlas {

/** One bin of a constant-Q bank. */
struct ConstantQBin {
    /** Cosine and sine of each point in turn, windowed. */
    const float* kernel;
    /** Of the window within the frame, samples. */
    int start;
    /** Of the window, samples. */
    int length;
};

/** Cosine and sine sums of one window: the plain form, in order of time and in single precision. */
struct ConstantQSums {
    float re = 0.0F;
    float im = 0.0F;
};

inline ConstantQSums correlate(const ConstantQBin& bin, const float* frame) {
    ConstantQSums sums;
    for (std::ptrdiff_t i = 0; i < bin.length; ++i) {
        const float sample = frame[bin.start + i];
        sums.re += sample * bin.kernel[2 * i];
        sums.im += sample * bin.kernel[(2 * i) + 1];
    }
    return sums;
}

/** correlate() of every bin over many frames, bit for bit.
 *
 *  A sum waits for its own last addition, but the sums of different frames do not wait for each
 *  other: each frame has a lane, and up to four vectors of frames are summed side by side. For that
 *  the samples of a short time are laid out so that those of all frames at the same position are
 *  neighbours; all bins take that block while it is in the nearest cache, and their sums rest in
 *  memory until the next block. Lanes without a frame repeat the last one.
 *
 *  @param samples  of the frames, which lie hop samples apart; frameLength samples of each are
 *                  looked at
 *  @param sums     receives the frames of bin 0, then those of bin 1 … */
void correlateFrames(const std::vector<ConstantQBin>& bins, int frameLength, const float* samples,
                     std::ptrdiff_t hop, int frames, ConstantQSums* sums);

}  // namespace beatatlas
