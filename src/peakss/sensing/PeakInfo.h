// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace peakss {

/** One level peak of a band. */
struct PeakInfo {
    std::int32_t pos = 0;   ///< samples from the start of the track to the maximum
    float level = 0.0F;     ///< the maximum, in the units of the band's level
    float interval = 0.0F;  ///< ms since the band's previous peak; 0 for its first
};

}  // namespace peakss
