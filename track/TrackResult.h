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
    double rawBpm = 0.0;         // before it was brought into the range of the options
    std::int32_t isSteady = -1;  // 1, 0, or -1 if not known
    BA_TrackConfidence confidence{};
    std::vector<BA_TrackTempoStretch> stretches;
    std::vector<BA_TrackReading> readings;  // other than the chosen one, best first
    std::vector<BA_TrackBeat> beats;
    std::array<std::vector<BA_WaveInfo>, kWaveKinds> waves;  // by BA_TRACK_WAVE_…
    std::vector<BA_TrackKeyCandidate> keys;                  // by evidence, the likeliest first
    double keyConfidence = 0.0;
    double tuningCents = 0.0;
    double tuningHz = 0.0;
    std::vector<double> chroma;  // from A
    std::vector<BA_TrackKeySegment> keySegments;
    std::vector<BA_TrackKeyScore> sessionKeys;  // best first
    std::vector<BA_TrackNote> notes;            // from A
};

}  // namespace beatatlas::track::inner
