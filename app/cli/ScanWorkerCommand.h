// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "cli/Command.h"

namespace app {

/** `beatatlas scan-worker`: what `beatatlas scan` runs for itself; people do not. */
class ScanWorkerCommand : public Command {
public:
    std::string name() const override { return "scan-worker"; }
    std::string description() const override { return "Analyse files for beatatlas scan"; }
    bool isHidden() const override { return true; }
    void declare(CLI::App&) override {}
    ExitCode run(ResultStream& results) override;
};

}  // namespace app
