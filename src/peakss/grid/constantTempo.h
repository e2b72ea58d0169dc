// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** The commonest beat interval of a whole track, in ms, exact to a tenth of a BPM; 0 when no beat
 *  has a tempo that can be counted.
 *
 *  @param length  of the track in samples, counted from the first beat */
float findTrackInterval(const BeatList& raw, int length);

/** Removes the beats whose interval matches neither the track's interval (ms) nor that of the raw
 *  beat before. */
void dropOtherTempi(BeatList& raw, float trackInterval);

}  // namespace peakss
