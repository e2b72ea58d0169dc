// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace media {

/** What one pass over a track met. */
struct DecodeTally {
    std::int64_t packets = 0;
    std::int64_t damagedPackets = 0;  ///< could not be decoded; silence stands in their place

    /** At the track's own rate, with the silence that was put in, without the padding that the file
     *  tells of. */
    std::int64_t frames = 0;

    bool isLastPacketDamaged = false;
    bool isLastPacketIncomplete = false;  ///< the file ended inside it
    int readFailure = 0;  ///< FFmpeg's error number when the container could not be read to its end
};

}  // namespace media
