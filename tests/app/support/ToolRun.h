// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace test {

/** Where the tool's standard output leads in a run. */
enum class OutputPlace { captured, fullDisk, closedPipe, closed };

/** How the tool is run, and what it did. It always runs without the superuser's right to open what
 *  it may not. */
struct ToolRun {
    std::vector<std::string> arguments;
    std::string folder;  ///< working folder; empty: the test's own
    OutputPlace output = OutputPlace::captured;
    /** A descriptor for its standard input; -1: the test's own. */
    int input = -1;
    /** $XDG_CONFIG_HOME, in which the file of settings is. */
    std::string configFolder = "/nonexistent";
    std::map<std::string, std::string> environment = {};
    bool hasTerminal = false;  ///< standard error is a terminal

    /** Sent once the first progress is shown; needs the terminal. */
    std::optional<int> signalAtProgress;
    std::function<void()> atProgress;  ///< done then, too
    /** Done while it runs, by its process. */
    std::function<void(pid_t)> meanwhile = {};

    int exitStatus = -1;  ///< 1000 and the signal's number when a signal killed it
    std::string out;
    std::string err;

    /** Runs the built program and waits for its end. */
    ToolRun& run();
};

/** The tool with these arguments, run. */
ToolRun runTool(const std::vector<std::string>& arguments);

}  // namespace test
