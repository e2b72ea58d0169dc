// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace media {

/** A whole track in memory, with its own channels and rate. */
struct Recording {
    int rate = 0;                  ///< Hz
    std::uint64_t layoutMask = 0;  ///< FFmpeg's places of the channels; 0: they are only counted
    std::vector<std::vector<float>> channels;  ///< full scale ±1.0, all of one length

    std::size_t frames() const { return channels.empty() ? 0 : channels.front().size(); }
};

}  // namespace media
