// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Of two neighbouring beats less than 0.7 beat apart, drops the later one, or the earlier one when the later
 *  opens a phrase. */
void clearNearItems(BeatList& list, int samplingRate);

}  // namespace peakss
