// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace beatatlas::bench {

/** What a process took from its start to its end. */
struct ChildRun {
    double processorSeconds = 0.0;  ///< of all its threads, the system's work for it included
    double wallSeconds = 0.0;
    double peakBytes = 0.0;
};

/** Runs a program to its end, its output thrown away.
 *  @param words  its path, then its arguments
 *  @throws std::runtime_error when it cannot be run or ends with anything but 0 */
ChildRun runChild(const std::vector<std::string>& words);

}  // namespace beatatlas::bench
