// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "cli/ExitCode.h"
#include "io/ResultStream.h"

namespace app {

/** The whole tool behind its main function. */
class Program {
public:
    explicit Program(ResultStream& results) : results_(results) {}

    /** Parses the command line, runs the command, and turns every failure into a message and an
     *  exit status. */
    int run(int argc, const char* const* argv);

private:
    ExitCode parseAndRun(const std::vector<std::string>& words);

    ResultStream& results_;
};

}  // namespace app
