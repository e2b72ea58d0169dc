// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace peakss {

/** One beat, from raw candidate to final grid. Lists of it are ordered by position. */
struct BeatInfo {
    /** Samples from the start of the track. */
    std::int32_t pos = 0;

    /** Raw: quarter beats since the band's previous peak; 0 once laid on the grid. */
    float phase = 0.0F;

    /** Beat interval in ms; 60000 / interval is the tempo in BPM. */
    float interval = 0.0F;

    /** Raw: detection group << 8 | weight; final grid: number in the bar, from 1. */
    std::int32_t group = 0;

    /** Detection band 0..5; −1 for a beat laid without a candidate. */
    std::int32_t band = 0;

    /** Opens a phrase laid from a snapped anchor. */
    bool segHead = false;
};

using BeatList = std::vector<BeatInfo>;

/** Of a raw candidate: the number of the report that it came with, counted along the track. */
inline std::int32_t groupNumber(const BeatInfo& candidate) {
    return candidate.group >> 8;
}

/** Of a raw candidate: how many peaks agreed in that report, the more the heavier; 0 to 255. */
inline std::int32_t groupWeight(const BeatInfo& candidate) {
    return candidate.group & 0xFF;
}

}  // namespace peakss
