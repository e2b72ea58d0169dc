// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "base/TrackSource.h"

namespace media {

/** What one pass over a track met. */
struct DecodeTally {
    std::int64_t packets = 0;
    std::int64_t damagedPackets = 0;   ///< could not be decoded
    std::int64_t repeatedPackets = 0;  ///< were there before, and were left out
    std::vector<base::Gap> gaps;       ///< where silence was put

    /** At the track's own rate, with the silence that was put in, without the padding that the file
     *  tells of. */
    std::int64_t frames = 0;
    double seconds = 0.0;  ///< the same as time, whatever the rate of each stretch

    bool isLastPacketDamaged = false;
    bool isLastPacketIncomplete = false;  ///< the file ended inside it
    int readFailure = 0;  ///< FFmpeg's error number when the container could not be read to its end
};

}  // namespace media
