// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Of two candidates less than an eighth of a beat apart, keeps the one whose group is the heavier,
 *  the earlier of equals. Candidates at or behind the track's end stay as they are, and so do all
 *  when there is no segment.
 *
 *  @param length  of the track in samples */
void dropCloseCandidates(BeatList& raw, const BeatList& segments, int length, int samplingRate);

/** Of two neighbouring beats less than 0.7 beat apart, drops the later one, or the earlier one when
 *  the later opens a phrase. */
void clearNearItems(BeatList& list, int samplingRate);

}  // namespace peakss
