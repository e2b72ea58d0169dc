// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"
#include "peakss/grid/groupTempoTable.h"

namespace peakss {

/** Removes the beats of the groups that do not carry on a tempo, and of those that have none. */
void discontinuousGroupRemoval(BeatList& raw, const GroupTempos& tempos);

}  // namespace peakss
