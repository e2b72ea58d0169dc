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
    TrackTags tags = {};
};

/** What of a track's sound was not analysed as it is. */
struct Overload {
    std::int64_t heard = 0;       ///< samples of all channels
    std::int64_t clipped = 0;     ///< of them beyond full scale
    float peak = 0.0F;            ///< the loudest of those; full scale is 1
    std::int64_t notNumbers = 0;  ///< taken for silence

    /** Lossy decoders and rate converters go over full scale here and there, and nobody hears what
     *  is clipped of it. */
    bool isTooLoud() const {
        constexpr float kLoudPeak = 2.0F;  // 6 dB
        constexpr double kManySamples = 0.01;
        return peak >= kLoudPeak ||
               static_cast<double>(clipped) > kManySamples * static_cast<double>(heard);
    }
};

/** Where a track came from, and the state of its file. */
struct TrackSource {
    std::string path;
    TrackFormat format;
    /** The file holds only the beginning of the track. */
    bool isCutOff = false;

    /** How many sections could not be decoded; they are replaced by silence. */
    std::int64_t damagedPackets = 0;

    Overload overload;
};

}  // namespace base
