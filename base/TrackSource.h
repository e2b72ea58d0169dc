// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace base {

/** How a track is called by its file's tags; empty where they do not say. */
struct TrackTags {
    std::string artist;
    std::string title;
};

/** What a track's file says about itself. */
struct TrackFormat {
    std::string container;  ///< FFmpeg's short name, "mov,mp4,m4a,3gp,3g2,mj2" for MP4
    std::string codec;      ///< FFmpeg's short name
    int channels = 0;
    int trackRate = 0;    ///< Hz, of the file
    int sessionRate = 0;  ///< Hz, of the analysis
    TrackTags tags = {};
};

/** Where a track came from, and in which state its file was. */
struct TrackSource {
    std::string path;
    TrackFormat format;
    bool isCutOff = false;  ///< the file holds only the beginning of the track

    /** Stretches that could not be decoded; silence stands in their place. */
    std::int64_t damagedPackets = 0;
};

}  // namespace base
