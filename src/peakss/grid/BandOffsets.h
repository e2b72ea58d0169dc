// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace peakss {

inline constexpr int kDetectorBands = 6;

/** How far, in ms, a beat lies from the moment its band's detector fires: negative, since every
 *  detector is late; the low bands, whose envelopes rise slowly, most of all. */
using BandOffsets = std::array<double, kDetectorBands>;

inline constexpr BandOffsets kDetectorOffsetsMs{-30.0, -20.0, -3.0, -3.0, -20.0, -3.0};

inline bool isDetectorBand(int band) {
    return band >= 0 && band < kDetectorBands;
}

/** The offset of a band, or the given one for a beat that no band has heard. */
inline double bandOffset(const BandOffsets& offsetsMs, int band, double otherwiseMs) {
    return isDetectorBand(band) ? offsetsMs[static_cast<std::size_t>(band)] : otherwiseMs;
}

inline double largestOffset(const BandOffsets& offsetsMs) {
    return *std::max_element(offsetsMs.begin(), offsetsMs.end());
}

}  // namespace peakss
