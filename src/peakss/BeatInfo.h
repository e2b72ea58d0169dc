// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace peakss {

/** One beat, from raw candidate to final grid. Lists of it are ordered by position. */
struct BeatInfo {
    std::int32_t pos = 0;  ///< samples from the start of the track

    /** Raw: quarter beats since the band's previous peak; 0 once laid on the grid. */
    float phase = 0.0F;

    float interval = 0.0F;  ///< beat interval in ms; 60000 / interval is the tempo in BPM

    /** Raw: detection group << 8 | weight; final grid: number in the bar, from 1. */
    std::int32_t group = 0;

    std::int32_t band = 0;  ///< detection band 0..5; −1 for a beat laid without a candidate
    bool segHead = false;   ///< opens a phrase laid from a snapped anchor
};

inline std::int32_t groupNumber(const BeatInfo& beat) {
    return beat.group >> 8;
}

inline std::int32_t groupWeight(const BeatInfo& beat) {
    return beat.group & 0xFF;
}

using BeatList = std::vector<BeatInfo>;

}  // namespace peakss
