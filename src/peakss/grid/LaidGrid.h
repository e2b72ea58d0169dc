// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "peakss/BeatInfo.h"

namespace peakss {

/** A beat grid as laid, before gaps are corrected and bars are numbered. */
struct LaidGrid {
    BeatList beats;
    int firstAnchor =
        -1;  ///< index of the first beat tied to a raw beat of a detector band; −1 for none
    int lastAnchor = -1;           ///< index of the last one when there are several; −1 otherwise
    std::int32_t firstOrigin = 0;  ///< where the first segment's first phrase begins, samples
};

}  // namespace peakss
