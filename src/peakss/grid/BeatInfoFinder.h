// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "peakss/BeatInfo.h"

namespace peakss {

/** Binary search over beats ordered by position.
 *
 *  A list out of order (a grid with repaired gaps) gets an answer too, always the same one, and
 *  which one is part of the results: the order of the comparisons must stay. */
class BeatInfoFinder {
public:
    /** Index of the last beat at or before the position; −1 when all lie after it or there is no
     *  array; count − 1 for a count below 1. */
    static int b_serch(std::int32_t pos, const BeatInfo* beats, int count);

    /** As b_serch over a list, but a position before the first beat maps to the first; −1 for an
     *  empty list. */
    static int findIndex(const BeatList& list, std::int32_t pos);
};

}  // namespace peakss
