// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Gives each segment the commonest tempo of its beats, exact to a tenth of a BPM, and joins
 *  neighbours whose tempi match; a joined segment is measured again over its whole length.
 *
 *  @param length  of the track in samples, the span of the last segment wherever it begins */
void refineSegments(BeatList& segments, const BeatList& raw, int length);

}  // namespace peakss
