// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace beatatlas::bench {

/** The resources that a process used from start to end. */
struct ChildRun {
    /** Of all its threads, including system time. */
    double processorSeconds = 0.0;
    double wallSeconds = 0.0;
    double peakBytes = 0.0;
};

/** Runs a program to its end and discards its output. The program is the child of a small process,
 *  because the memory of this process would count towards the child's peak.
 *  @param program  where to find this program
 *  @param words    the other program's path, then its arguments; without quotation marks
 *  @throws std::runtime_error if it cannot be run or its exit status is not 0 */
ChildRun runChild(const char* program, const std::vector<std::string>& words);

/** Called in the small process: runs the program named by `words` and prints one line of
 *  figures. */
void reportRun(const std::vector<std::string>& words);

}  // namespace beatatlas::bench
