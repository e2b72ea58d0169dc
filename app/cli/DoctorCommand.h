// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "cli/Command.h"

namespace app {

/** `beatatlas doctor`: whether the program works on this machine as it should. */
class DoctorCommand : public Command {
public:
    std::string name() const override { return "doctor"; }
    std::string description() const override {
        return "Show what the program runs with, and check it on a track that is known";
    }
    /** A file of settings that makes no sense is something to report, not to stop at. */
    bool takesSettings() const override { return false; }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    bool asJson_ = false;
};

}  // namespace app
