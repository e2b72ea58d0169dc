// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "peakss/BeatInfo.h"
#include "peakss/grid/BandOffsets.h"
#include "peakss/grid/GridLayer.h"
#include "peakss/grid/LaidGrid.h"

namespace peakss {

/** Lays the beat grid of all segments, one after the other, tied to the raw beats near it.
 *
 *  @param offsetsMs  one set per segment
 *  @param length     of the track in samples */
LaidGrid gridLaying(const BeatList& segments, const std::vector<BandOffsets>& offsetsMs,
                    const BeatList& raw, const GridPhrase& phrase, int length, int samplingRate);

}  // namespace peakss
