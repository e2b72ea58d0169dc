// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::test {

/** Both channels of a track, 16-bit scale. */
struct StereoTrack {
    std::vector<float> left;
    std::vector<float> right;
    int frames() const { return static_cast<int>(left.size()); }
};

}  // namespace beatatlas::test
