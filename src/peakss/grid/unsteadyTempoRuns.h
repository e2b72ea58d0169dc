// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace peakss {

/** When a run of intervals, each the tempo of the one before, is long enough to be music. */
struct TempoRunRule {
    /** Matches below which a broken run is dropped. */
    int shortestRun;
    /** Matches below which a run that returns to the earlier tempo is dropped. */
    int longestInterlude;
    /** Matches below which the last run is dropped when an accepted one precedes it. */
    int shortestOpenRun;
    /** A value that begins anew behind a dropped run matches itself. */
    bool firstCountsAsHit;
};

/** Indices of values, first included, end not. */
struct ValueRange {
    std::size_t first;
    std::size_t end;
};

/** Finds where a sequence of beat intervals (ms) does not keep a tempo, in order and without
 *  overlap.
 *
 *  Values are chained, each compared with the one before it. Behind a dropped run the comparison
 *  resumes from the last accepted run, whose count goes on: a steady tempo survives a disturbance
 *  inside it. Linear. */
std::vector<ValueRange> unsteadyTempoRuns(const std::vector<float>& intervalsMs,
                                          const TempoRunRule& rule);

}  // namespace peakss
