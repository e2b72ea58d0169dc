// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Removes the beats whose interval matches neither the track's interval (ms) nor that of the raw beat before. */
void tempoMismatchRemoval(BeatList& raw, float trackInterval);

}  // namespace peakss
