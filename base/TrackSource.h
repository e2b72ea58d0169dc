// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace base {

/** The format of a track's file. */
struct TrackFormat {
    std::string container;  ///< FFmpeg's short name, "mov,mp4,m4a,3gp,3g2,mj2" for MP4
    std::string codec;      ///< FFmpeg's short name
    int channels = 0;
    int trackRate = 0;    ///< rate of the file, Hz
    int sessionRate = 0;  ///< rate of the analysis, Hz
};

/** Where a track came from, and the state of its file. */
struct TrackSource {
    std::string path;
    TrackFormat format;
    bool isCutOff = false;  ///< the file holds only the beginning of the track

    /** How many sections could not be decoded; they are replaced by silence. */
    std::int64_t damagedPackets = 0;
};

}  // namespace base
