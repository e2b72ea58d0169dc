// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** Where a time lies among times in ascending order: the index, with a fraction between two of them; before the first 0,
 *  after the last its index.
 *  @param times  at least one */
double placeOf(double time, const std::vector<double>& times);

/** The time at a place; the inverse of placeOf(). */
double timeAt(double place, const std::vector<double>& times);

}  // namespace beatatlas::track::inner
