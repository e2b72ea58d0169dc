// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas {

/** The beat period whose evenly spaced points collect the most level.
 *
 *  Two passes: steps of 0.1 within 2 envelope values of the given length, then steps of 0.01 within
 *  0.1 of the best. Of equal sums the shortest period stands.
 *
 *  @param envelope    one level per 128 frames
 *  @param start       envelope index of the first point; points outside the envelope count nothing
 *  @param beatLength  envelope values per beat at the tempo so far
 *  @param pointCount  points laid per trial
 *  @return            envelope values per beat, within 2.1 of beatLength */
double findBeatPeriod(const std::vector<std::int16_t>& envelope, std::int64_t start,
                      double beatLength, std::size_t pointCount);

}  // namespace beatatlas
