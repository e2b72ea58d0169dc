// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "peakss/BeatInfo.h"

namespace peakss {

/** Numbers the beats into bars, from 1, so that the last beat at or before the reference is number
 *  1.
 *
 *  @param reference  samples; one before the first beat makes the first beat number 1
 *  @param barBeats   beats per bar; fewer than 4 count as 4 */
void numberBars(BeatList& grid, std::int32_t reference, int barBeats);

/** Position of the first beat tied to a raw beat of a detector band; 0 when there is none. */
std::int32_t firstAnchorPosition(const BeatList& grid);

/** Drops the beats before the start of the track and those behind its end. */
void trimToTrack(BeatList& grid, int length);

}  // namespace peakss
