// SPDX-License-Identifier: MIT
#include "cli/CommandLine.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "cli/ConfigFile.h"
#include "cli/commandTable.h"

namespace app {

namespace {

constexpr const char* kDescription = "Beat Atlas finds the tempo, the beat grid and the key of "
                                     "music tracks and draws their waveforms.";

constexpr const char* kFooter =
    "beatatlas COMMAND --help shows the options of a command.\n"
    "A name that begins with '-' goes behind '--': beatatlas analyze -- -intro.mp3\n"
    "\n"
    "Results go to standard output, everything else to standard error.\n"
    "Exit status: 0 all is well; 1 a track could not be analysed or a result could not be\n"
    "written (the other tracks of the command are analysed all the same); 2 the command line\n"
    "could not be understood; 130 stopped by Ctrl-C.";

constexpr const char* kCommands = "Commands";

void declareEnds(CLI::App& arguments) {
    arguments.set_help_flag("-h,--help", "print this help and exit");
    // The program prints the version itself: making the text takes longer than all of this.
    arguments.set_version_flag("--version", "", "print the version and exit");
}

}  // namespace

CommandLine::CommandLine() : commands_(makeCommands()), parser_(std::make_unique<CLI::App>()) {
    declareProgram();
    for (const auto& command : commands_) declareCommand(*command);
    declareHelp();
}

CommandLine::~CommandLine() = default;

const Command* CommandLine::find(const std::string& name) const {
    const auto found = std::find_if(commands_.begin(), commands_.end(),
                                    [&](const auto& command) { return command->name() == name; });
    return found == commands_.end() ? nullptr : found->get();
}

void CommandLine::declareProgram() {
    parser_->name("beatatlas");
    parser_->description(kDescription);
    parser_->footer(kFooter);
    parser_->require_subcommand(1);
    parser_->get_formatter()->label("SUBCOMMAND", "COMMAND");
    declareEnds(*parser_);
}

void CommandLine::declareCommand(Command& command) {
    CLI::App* arguments = parser_->add_subcommand(command.name(), command.description());
    arguments->group(command.isHidden() ? "" : kCommands);
    declareEnds(*arguments);
    command.declare(*arguments);
    if (command.takesSettings()) declareConfig(*arguments);
}

void CommandLine::declareHelp() {
    CLI::App* help = parser_->add_subcommand(kHelp, "Print this help, or that of a command");
    help->group(kCommands);
    declareEnds(*help);
    help->add_option("COMMAND", helpTopic_, "one of the commands")->required()->option_text(" ");
}

}  // namespace app
