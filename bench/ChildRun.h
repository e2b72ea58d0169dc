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

/** Runs a program to its end, its output thrown away, as the child of a small process: what this one holds in memory
 *  would count as the child's.
 *  @param program  where to find this program
 *  @param words    the other's path, then its arguments; without quotation marks
 *  @throws std::runtime_error when it cannot be run or ends with anything but 0 */
ChildRun runChild(const char* program, const std::vector<std::string>& words);

/** What the small process does: runs the words and prints one line of figures. */
void reportRun(const std::vector<std::string>& words);

}  // namespace beatatlas::bench
