// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace media {

/** A whole track in memory, with its own channels and rate. */
struct Recording {
    /** Hz. */
    int rate = 0;
    /** FFmpeg's mask of channel positions; 0: only their number is known. */
    std::uint64_t layoutMask = 0;
    /** Full scale ±1.0, all of one length. */
    std::vector<std::vector<float>> channels;

    std::size_t frames() const { return channels.empty() ? 0 : channels.front().size(); }
};

}  // namespace media
