// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace output {

/** The lowest and the highest sample of each stretch of a track, in 16 bits. */
struct Peaks {
    int rate = 0;            ///< of the samples, Hz
    int framesPerPixel = 0;  ///< that a stretch is long; the last one may be shorter
    int channels = 0;

    /** For each stretch its channels in turn, for each channel the lowest and the highest. */
    std::vector<std::int16_t> values;

    std::size_t pixels() const {
        return channels == 0 ? 0 : values.size() / (2 * static_cast<std::size_t>(channels));
    }
};

}  // namespace output
