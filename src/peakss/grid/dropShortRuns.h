// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Removes the beats that do not belong to at least eight consecutive matches of tempo, and the
 *  short interludes inside a longer tempo. */
void dropShortRuns(BeatList& raw);

}  // namespace peakss
