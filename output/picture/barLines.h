// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "beatatlas/track.hpp"
#include "output/picture/TimeAxis.h"

namespace output {

/** Where a bar begins. */
struct BarLine {
    double x;
    int number;  ///< from 1, the track's first downbeat
};

/** The bars that begin on the axis: all of them, or every second, fourth, eighth … where they would
 *  stand closer together than that. */
std::vector<BarLine> barLines(const std::vector<beatatlas::track::Beat>& beats, int rate,
                              const TimeAxis& axis, double leastDistance);

}  // namespace output
