// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "peakss/BeatInfo.h"
#include "peakss/grid/BpmCountTbl.h"

namespace peakss {

// Look-ups over a beat list ordered by position. Positions and tolerances are in samples; an index
// or a position of −1 means none. None of them changes the list.

/** First index from start on whose tempo falls in a slot of the table; the slot may lie outside the
 *  table. */
int findFirstIdx(const BeatList& list, int start, int slot, const BpmCountTbl& table);

/** First index of the trailing run of beats at or after the position. */
int findPosAfter(const BeatList& list, std::int32_t pos);

/** First index of the beats exactly at the position. Logarithmic. */
int sampleToIndex(const BeatList& list, std::int32_t pos);

/** Position of the beat nearest to the position within the tolerance, the earlier of two equally
 *  near, and the last of several at one position before it.
 *
 *  @param index  null, or takes the beat's index, −1 when none is near; untouched for an empty
 *                list */
std::int32_t findNearPos(const BeatList& list, std::int32_t pos, int tolerance, int* index);

/** The position moved to the nearest eighth-beat point counted from the beats around it; −1 when
 *  that point is not nearer than the tolerance.
 *
 *  @param index  must not be null; takes the index of the beat counted from, untouched when there
 *                is none */
std::int32_t findXPos(const BeatList& list, std::int32_t pos, int tolerance, int samplingRate,
                      int* index);

/** The highest level of two channels in 16-bit scale, 1.0 being full scale. Levels below 0.005
 *  count as silence.
 *
 *  @param index  on entry the index of the first sample; takes the index of the highest one, the
 *                first of equals. Untouched when all is silence
 *  @return 0.0 for silence, a count below 1 or a null argument */
float getBuffLevel(int count, const float* left, const float* right, int* index);

}  // namespace peakss
