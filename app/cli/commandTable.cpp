// SPDX-License-Identifier: MIT
#include "cli/commandTable.h"

#include "cli/AnalyzeCommand.h"
#include "cli/ClickCommand.h"
#include "cli/CompareCommand.h"
#include "cli/CorrectCommand.h"
#include "cli/CutCommand.h"
#include "cli/DoctorCommand.h"
#include "cli/DrawCommand.h"
#include "cli/ExportCommand.h"
#include "cli/ForgetCommand.h"
#include "cli/KeyCommand.h"
#include "cli/ListCommand.h"
#include "cli/MergeCommand.h"
#include "cli/PitchCommand.h"
#include "cli/ReportCommand.h"
#include "cli/ScanCommand.h"
#include "cli/ScanWorkerCommand.h"
#include "cli/ServeCommand.h"
#include "cli/ShowCommand.h"
#include "cli/TagCommand.h"

namespace app {

std::vector<std::unique_ptr<Command>> makeCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<AnalyzeCommand>());
    commands.push_back(std::make_unique<DrawCommand>());
    commands.push_back(std::make_unique<ReportCommand>());
    commands.push_back(std::make_unique<ExportCommand>());
    commands.push_back(std::make_unique<PitchCommand>());
    commands.push_back(std::make_unique<KeyCommand>());
    commands.push_back(std::make_unique<CutCommand>());
    commands.push_back(std::make_unique<ScanCommand>());
    commands.push_back(std::make_unique<ListCommand>());
    commands.push_back(std::make_unique<ShowCommand>());
    commands.push_back(std::make_unique<CorrectCommand>());
    commands.push_back(std::make_unique<ServeCommand>());
    commands.push_back(std::make_unique<ForgetCommand>());
    commands.push_back(std::make_unique<MergeCommand>());
    commands.push_back(std::make_unique<ScanWorkerCommand>());
    commands.push_back(std::make_unique<ClickCommand>());
    commands.push_back(std::make_unique<TagCommand>());
    commands.push_back(std::make_unique<CompareCommand>());
    commands.push_back(std::make_unique<DoctorCommand>());
    return commands;
}

}  // namespace app
