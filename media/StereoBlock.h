// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace media {

/** A block of stereo audio, one vector per channel, both of the same length. */
struct StereoBlock {
    std::vector<float> left;
    std::vector<float> right;

    std::size_t frames() const { return left.size(); }

    void resize(std::size_t frames) {
        left.resize(frames);
        right.resize(frames);
    }

    void assignSilence(std::size_t frames) {
        left.assign(frames, 0.0F);
        right.assign(frames, 0.0F);
    }
};

}  // namespace media
