// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <vector>

namespace base {

constexpr int kKeyCount = 24;
constexpr int kPitchClassCount = 12;

/** One beat of the grid. */
struct Beat {
    int frame;        ///< from the first frame of music, at the session's rate
    int numberInBar;  ///< from 1, the downbeat
    int bpm100;       ///< local tempo in hundredths of a BPM

    bool isDownbeat() const { return numberInBar == 1; }
};

/** One point of a waveform overview. */
struct WavePoint {
    float level;
    int color;
};

/** All keys, best first, and the statistics of the notes. Keys 0 to 11 are the major keys from A upward, 12 to 23 the
 *  minor keys; pitch classes count from A too. */
struct KeyRanking {
    std::array<int, kKeyCount> keys{};
    std::array<double, kKeyCount> scores{};  ///< of keys[0], keys[1] …
    std::array<int, kPitchClassCount> noteCounts{};
    std::array<double, kPitchClassCount> noteShares{};

    /** How far the runner-up lies behind the best, as a share of the best score: 0 (level) to 1. */
    double runnerUpDistance() const { return (scores[0] - scores[1]) / scores[0]; }
};

/** What a session found. Empty lists and missing values: nothing was found, or it was not asked for. */
struct AnalysisResult {
    int rate = 0;    ///< Hz
    int frames = 0;  ///< length of the track at that rate
    std::optional<int> bpm100;
    std::vector<Beat> beats;
    std::vector<WavePoint> loudWave;  ///< 400 points; level in 16-bit scale, colour 0 to 5
    std::vector<WavePoint> dotsWave;  ///< 100 points; level in 16-bit scale (sums, may exceed it)
    std::vector<WavePoint>
        zoomWave;  ///< 150 points a second; level 0 to 31, colour 0 (all bass) to 7
    std::optional<KeyRanking> key;

    double seconds() const { return static_cast<double>(frames) / rate; }
    double secondsAt(int frame) const { return static_cast<double>(frame) / rate; }
};

}  // namespace base
