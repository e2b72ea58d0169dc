// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Of two candidates less than an eighth of a beat apart, keeps the one whose group is the heavier,
 *  the earlier of equals. Candidates at or behind the track's end stay as they are, and so do all
 *  when there is no segment.
 *
 *  @param raw           ordered by position in samples
 *  @param segments      ordered by their start; their intervals, in ms, give the beat
 *  @param length        of the track in samples
 *  @param samplingRate  in Hz */
void dropCloseCandidates(BeatList& raw, const BeatList& segments, int length, int samplingRate);

/** Of two neighbouring beats less than 0.7 beat apart, drops the later one, or the earlier one when
 *  the later opens a phrase (segHead). A beat is as long as the interval of the earlier one says;
 *  one that is not above 0 or not a number is near to nothing.
 *
 *  @param list          ordered by position in samples; intervals in ms. An empty list stays empty
 *  @param samplingRate  in Hz */
void clearNearItems(BeatList& list, int samplingRate);

}  // namespace peakss
