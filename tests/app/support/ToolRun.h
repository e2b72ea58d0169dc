// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace test {

/** Where the tool's standard output leads in a run. */
enum class OutputPlace { captured, fullDisk, closedPipe, closed };

/** How the tool is run, and what it did. It always runs without the superuser's right to open what
 *  it may not. */
struct ToolRun {
    std::vector<std::string> arguments;
    /** Working folder; empty: the test's own. */
    std::string folder;
    OutputPlace output = OutputPlace::captured;
    /** A descriptor for its standard input; -1: the test's own. */
    int input = -1;
    /** $XDG_CONFIG_HOME, in which the file of settings is. */
    std::string configFolder = "/nonexistent";
    std::map<std::string, std::string> environment = {};
    /** Standard error is a terminal. */
    bool hasTerminal = false;

    /** Sent once the first progress is shown; needs the terminal. */
    std::optional<int> signalAtProgress;
    /** Done then, too. */
    std::function<void()> atProgress;

    /** 1000 and the signal's number when a signal killed it. */
    int exitStatus = -1;
    std::string out;
    std::string err;

    /** Runs the built program and waits for its end. */
    ToolRun& run();
};

/** In a process just forked: becomes the tool, with its output led to these descriptors and without
 *  the superuser's rights. @param output  -1: closed */
[[noreturn]] void becomeTool(std::vector<std::string> arguments, int output, int error);

/** The tool with these arguments, run. */
ToolRun runTool(const std::vector<std::string>& arguments);

}  // namespace test
