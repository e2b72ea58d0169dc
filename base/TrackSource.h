// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace base {

/** What a track's file says about itself. */
struct TrackFormat {
    std::string container;  ///< FFmpeg's short name, "mov,mp4,m4a,3gp,3g2,mj2" for MP4
    std::string codec;      ///< FFmpeg's short name
    int channels = 0;       ///< at its beginning, as the rate
    int trackRate = 0;      ///< Hz, of the file
    int sessionRate = 0;    ///< Hz, of the analysis
    bool changes = false;   ///< has other channels or another rate further on
};

/** A stretch of a track that its file no longer holds; silence stands in its place. */
struct Gap {
    double start = 0.0;   ///< seconds from the track's beginning
    double length = 0.0;  ///< seconds
};

/** Where a track came from, and in which state its file was. */
struct TrackSource {
    std::string path;
    TrackFormat format;
    bool isCutOff = false;  ///< the file holds only the beginning of the track

    /** Packets that could not be decoded, or in part only. */
    std::int64_t damagedPackets = 0;

    std::int64_t repeatedPackets = 0;  ///< were there twice, and were taken once
    std::vector<Gap> gaps;             ///< in order of time, apart from each other
    bool lacksEnd = false;             ///< its format marks a track's end, and it has no such mark
};

}  // namespace base
