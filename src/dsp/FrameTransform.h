// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas {

/** transform() of fftCore.h for several frames in single precision at a time, bit for bit, with
 *  tables that are made once.
 *
 *  Each frame has a lane: the points of all frames at the same place are neighbours, and a
 *  butterfly does in every lane what the plain form does for its frame, with the same twiddle
 *  factor. Points go to their bit-reversed positions while they are laid out, and two stages are
 *  taken in one pass over them. Lanes without a frame repeat the last one.
 *
 *  Memory: the tables, and two floats per point and lane. Throws std::bad_alloc when constructed
 *  without it. */
class FrameTransform {
public:
    /** At most so many frames go through at a time without a remainder, in every form. */
    static constexpr int kFramesAtOnce = 16;

    /** @param length  of a frame, a power of two */
    explicit FrameTransform(int length);

    /** Transforms count frames in place, without any scaling; frame f begins at re + f × stride and
     *  im + f × stride. */
    void run(bool inverse, float* re, float* im, std::ptrdiff_t stride, int count) const;

private:
    template <std::size_t kWidth>
    struct FrameLanes;

    std::ptrdiff_t length_;
    std::vector<float> sineTable_;
    std::vector<int> bitReversal_;
    // The real parts of all lanes and points, then the imaginary ones.
    mutable std::vector<float> laidOut_;
};

}  // namespace beatatlas
