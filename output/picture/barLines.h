// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "beatatlas/track.hpp"
#include "output/picture/TimeAxis.h"

namespace output {

/** The beginning of a bar. */
struct BarLine {
    double x;
    /** Counted from 1, the track's first downbeat. */
    int number;
};

/** The bars that begin within the axis: all of them, or every second, fourth, eighth … if they
 *  would be closer together than that. */
std::vector<BarLine> barLines(const std::vector<beatatlas::track::Beat>& beats, int rate,
                              const TimeAxis& axis, double leastDistance);

}  // namespace output
