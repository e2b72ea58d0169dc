// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace peakss {

/** When a run of intervals, each the tempo of the one before, is long enough to be music. */
struct TempoRunRule {
    int shortestRun;       ///< matches below which a broken run is dropped
    int longestInterlude;  ///< matches below which a run that returns to the earlier tempo is dropped
    int shortestOpenRun;  ///< matches below which the last run is dropped when an accepted one precedes it
    bool firstCountsAsHit;  ///< a value that begins anew behind a dropped run matches itself
};

/** A stretch of values, first included, end not. */
struct ValueRange {
    std::size_t first;
    std::size_t end;
};

/** Finds the stretches of a row of beat intervals (ms) that do not keep a tempo, in order and without overlap.
 *
 *  Values are chained, each compared with the one before it. Behind a dropped run the comparison resumes from the
 *  last accepted run, whose count goes on: a steady tempo survives a disturbance inside it. Linear. */
std::vector<ValueRange> unsteadyTempoRuns(const std::vector<float>& intervalsMs,
                                          const TempoRunRule& rule);

}  // namespace peakss
