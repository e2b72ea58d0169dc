// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "cli/Command.h"

namespace app {

/** `beatatlas merge A B … -o C`: one catalogue of several. */
class MergeCommand : public Command {
public:
    std::string name() const override { return "merge"; }
    std::string description() const override { return "Make one catalogue of several"; }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    std::vector<std::string> inputs_;
    std::string output_;
};

}  // namespace app
