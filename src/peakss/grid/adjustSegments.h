// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Fits each segment's start, interval and anchor spacing to the raw beats.
 *
 *  Tries the segment's interval and up to 2 ms to either side, anchors every 4, 2 and 1 beats, and
 *  origins every 96 samples, and keeps the pulse that meets the most beats most closely. A segment
 *  that meets none stays as it is. Writes start, interval, anchor spacing and skipped beats, those
 *  from the new start to the first beat met.
 *
 *  @param length  of the track in samples */
void adjustSegments(BeatList& segments, const BeatList& raw, int length, int samplingRate);

}  // namespace peakss
