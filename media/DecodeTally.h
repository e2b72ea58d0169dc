// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "base/TrackSource.h"

namespace media {

/** What one pass over a track found. */
struct DecodeTally {
    std::int64_t packets = 0;
    /** Packets that could not be decoded. */
    std::int64_t damagedPackets = 0;
    /** Packets that occurred before and were left out. */
    std::int64_t repeatedPackets = 0;
    /** Where silence was inserted. */
    std::vector<base::Gap> gaps;

    /** At the track's own rate, with the inserted silence, without the padding that the file
     *  states. */
    std::int64_t frames = 0;
    /** The same as time, with each part counted at its own rate. */
    double seconds = 0.0;

    bool isLastPacketDamaged = false;
    /** The file ends inside the last packet. */
    bool isLastPacketIncomplete = false;
    /** FFmpeg's error number when the container could not be read to its end. */
    int readFailure = 0;
};

}  // namespace media
