// SPDX-License-Identifier: MIT
#include "cli/commandTable.h"

#include "cli/AnalyzeCommand.h"
#include "cli/CutCommand.h"
#include "cli/DrawCommand.h"
#include "cli/ExportCommand.h"
#include "cli/KeyCommand.h"
#include "cli/PitchCommand.h"

namespace app {

std::vector<std::unique_ptr<Command>> makeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<AnalyzeCommand>());
    commands.push_back(std::make_unique<DrawCommand>());
    commands.push_back(std::make_unique<ExportCommand>());
    commands.push_back(std::make_unique<PitchCommand>());
    commands.push_back(std::make_unique<KeyCommand>());
    commands.push_back(std::make_unique<CutCommand>());
    return commands;
}

}  // namespace app
