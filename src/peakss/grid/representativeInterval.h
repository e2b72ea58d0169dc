// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** The commonest beat interval of a whole track, in ms, exact to a tenth of a BPM; 0 when no beat has a tempo
 *  that can be counted.
 *
 *  @param length  of the track in samples, counted from the first beat */
float representativeInterval(const BeatList& raw, int length);

}  // namespace peakss
