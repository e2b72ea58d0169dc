// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "cli/ExitCode.h"
#include "io/ResultStream.h"

namespace CLI {
class App;
}

namespace app {

/** One of the tool's commands: the word after `beatatlas`. */
class Command {
public:
    virtual ~Command() = default;

    virtual std::string name() const = 0;
    virtual std::string description() const = 0;

    /** Whether it is for the tool itself: no help names it. */
    virtual bool isHidden() const { return false; }

    /** Whether a file of settings gives values to its options. The tool's own calls of itself state
     *  all that matters. */
    virtual bool takesSettings() const { return !isHidden(); }

    /** Declares the command's arguments; parsing the command line sets them. */
    virtual void declare(CLI::App& arguments) = 0;

    /** Does the work. @throws UsageError, OutputError, Interrupted */
    virtual ExitCode run(ResultStream& results) = 0;
};

}  // namespace app
