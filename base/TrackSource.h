// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace base {

/** A track's title and artist by its file's tags; empty when the tags lack them. */
struct TrackTags {
    std::string artist;
    std::string title;
};

/** A section of a track that its file no longer holds; it is replaced by silence. */
struct Gap {
    /** Seconds from the beginning of the track. */
    double start = 0.0;
    /** Seconds. */
    double length = 0.0;
};

/** The format of a track's file. */
struct TrackFormat {
    /** FFmpeg's short name, "mov,mp4,m4a,3gp,3g2,mj2" for MP4. */
    std::string container;
    /** FFmpeg's short name. */
    std::string codec;
    /** At the beginning of the track, like the rate. */
    int channels = 0;
    /** Rate of the file, Hz. */
    int trackRate = 0;
    /** Rate of the analysis, Hz. */
    int sessionRate = 0;
    /** Whether another rate or another number of channels follows later. */
    bool changes = false;
    TrackTags tags = {};
};

/** The samples of a track that could not be analysed unchanged. */
struct Overload {
    /** Samples of all channels. */
    std::int64_t heard = 0;
    /** Of these, the ones beyond full scale. */
    std::int64_t clipped = 0;
    /** The loudest of those; full scale is 1. */
    float peak = 0.0F;
    /** NaN samples, analysed as silence. */
    std::int64_t notNumbers = 0;

    bool isAny() const { return clipped > 0 || notNumbers > 0; }

    /** Lossy decoders and rate converters exceed full scale now and then, by so little that
     *  clipping it is inaudible. */
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
    /** Whether the file holds only the beginning of the track. */
    bool isCutOff = false;

    /** Packets that could not be decoded, or only in part. */
    std::int64_t damagedPackets = 0;

    /** Repeated packets, each of which was taken once. */
    std::int64_t repeatedPackets = 0;
    /** In order of time, not touching each other. */
    std::vector<Gap> gaps;
    /** Whether the format marks the end of a file and this file lacks the mark. */
    bool lacksEnd = false;

    Overload overload;

    /** Frames at the file's rate between the first one that its decoder yields and the first frame
     *  of music, where positions begin: the delay of encoder and decoder, which is left out. */
    std::int64_t droppedFrames = 0;

    /** The same in seconds. */
    double droppedSeconds() const {
        return format.trackRate == 0 ? 0.0 : static_cast<double>(droppedFrames) / format.trackRate;
    }
};

}  // namespace base
