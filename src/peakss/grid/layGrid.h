// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "peakss/BeatInfo.h"
#include "peakss/grid/BandOffsets.h"

namespace peakss {

/** The window that slides along a segment, in beats: the tempo of the whole phrase is that of its
 *  bar, which has the front beats before it and the back beats behind it. */
struct GridPhrase {
    int barBeats = 4;
    int frontBeats = 0;
    int backBeats = 0;
};

/** A beat grid as laid, before gaps are corrected and bars are numbered. */
struct LaidGrid {
    BeatList beats;
    /** Index of the first beat tied to a raw beat of a detector band; −1 for none. */
    int firstAnchor = -1;
    /** Index of the last one when there are several; −1 otherwise. */
    int lastAnchor = -1;
    /** Where the first segment's first phrase begins, samples. */
    std::int32_t firstOrigin = 0;
};

/** Lays the beat grid of all segments, one after the other, tied to the raw beats near it.
 *
 *  @param offsetsMs  one set per segment
 *  @param length     of the track in samples */
LaidGrid layGrid(const BeatList& segments, const std::vector<BandOffsets>& offsetsMs,
                 const BeatList& raw, const GridPhrase& phrase, int length, int samplingRate);

}  // namespace peakss
