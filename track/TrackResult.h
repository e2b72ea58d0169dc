// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "beatatlas/track.h"

namespace beatatlas::track::inner {

inline constexpr int kWaveKinds = 3;

/** All results of a track: plain data in the records of the interface, independent of the objects
 *  that found it. Empty lists and a tempo of 0 mean that nothing was found or that it was not asked
 *  for. */
struct TrackResult {
    std::int32_t rate = 0;
    std::int64_t frames = 0;
    double bpm = 0.0;
    /** The tempo before it was brought into the range of the options. */
    double rawBpm = 0.0;
    /** 1, 0, or -1 if not known. */
    std::int32_t isSteady = -1;
    BA_TrackConfidence confidence{};
    std::vector<BA_TrackTempoStretch> stretches;
    /** Readings other than the chosen one, best first. */
    std::vector<BA_TrackReading> readings;
    std::vector<BA_TrackBeat> beats;
    /** Indexed by BA_TRACK_WAVE_… */
    std::array<std::vector<BA_WaveInfo>, kWaveKinds> waves;
    /** The keys by evidence, the likeliest first. */
    std::vector<BA_TrackKeyCandidate> keys;
    double keyConfidence = 0.0;
    double tuningCents = 0.0;
    double tuningHz = 0.0;
    /** The strength of each note from A upward, adding up to 1. */
    std::vector<double> chroma;
    std::vector<BA_TrackKeySegment> keySegments;
    /** The keys of the session, best first. */
    std::vector<BA_TrackKeyScore> sessionKeys;
    /** The notes of the session from A upward. */
    std::vector<BA_TrackNote> notes;
};

}  // namespace beatatlas::track::inner
