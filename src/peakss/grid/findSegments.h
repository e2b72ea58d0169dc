// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Splits a cleaned raw list into segments of one tempo: a segment opens where the commonest tempo
 *  of the next eight seconds stops matching that of the beat before. Empty when no beat has a tempo
 *  that can be counted. */
BeatList findSegments(const BeatList& raw, int samplingRate);

}  // namespace peakss
