// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Replaces a grid by a perfectly even one through two of its beats, from the first place in the
 *  track to the last.
 *
 *  A grid between whose anchors no beat length lies (an empty one, or anchors in the wrong order)
 *  stays as it is, and so does one that would hold more than four million beats.
 *
 *  @param length       of the track in samples
 *  @param firstAnchor  index; below 0 means the grid's first beat
 *  @param lastAnchor   index; below 0 means the grid's last beat */
void gapCorrectConstant(BeatList& grid, int length, int firstAnchor, int lastAnchor,
                        int samplingRate);

}  // namespace peakss
