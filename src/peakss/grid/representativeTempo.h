// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** The BPM of the longest segment, the earlier of equals; the first counts from the start of the track. 0 when
 *  there is no segment.
 *
 *  @param length  of the track in samples */
float representativeTempo(const BeatList& segments, int length);

}  // namespace peakss
