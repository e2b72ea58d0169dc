// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace base {

/** The format of a track's file. */
struct TrackFormat {
    /** FFmpeg's short name, "mov,mp4,m4a,3gp,3g2,mj2" for MP4. */
    std::string container;
    /** FFmpeg's short name. */
    std::string codec;
    int channels = 0;
    /** Rate of the file, Hz. */
    int trackRate = 0;
    /** Rate of the analysis, Hz. */
    int sessionRate = 0;
};

/** Where a track came from, and the state of its file. */
struct TrackSource {
    std::string path;
    TrackFormat format;
    /** The file holds only the beginning of the track. */
    bool isCutOff = false;

    /** How many sections could not be decoded; they are replaced by silence. */
    std::int64_t damagedPackets = 0;
};

}  // namespace base
