// SPDX-License-Identifier: MIT
#include "cli/commandTable.h"

#include "cli/AnalyzeCommand.h"
#include "cli/DrawCommand.h"

namespace app {

std::vector<std::unique_ptr<Command>> makeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<AnalyzeCommand>());
    commands.push_back(std::make_unique<DrawCommand>());
    return commands;
}

}  // namespace app
