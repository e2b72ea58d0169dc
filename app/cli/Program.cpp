// SPDX-License-Identifier: MIT
#include "cli/Program.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "cli/ConfigFile.h"
#include "cli/bracketGuard.h"
#include "cli/commandTable.h"
#include "cli/messages.h"
#include "cli/refusal.h"
#include "cli/suggestion.h"
#include "cli/toolVersion.h"

namespace app {

namespace {

constexpr const char* kDescription = "Beat Atlas finds the tempo, the beat grid and the key of "
                                     "music tracks and draws their waveforms.";

constexpr const char* kFooter =
    "beatatlas COMMAND --help tells the options of a command.\n"
    "A name that begins with '-' goes behind '--': beatatlas analyze -- -intro.mp3\n"
    "\n"
    "Results go to standard output, everything else to standard error.\n"
    "Exit status: 0 all is well; 1 a track could not be analysed or a result could not be\n"
    "written (the other tracks of the command are analysed all the same); 2 the command line\n"
    "could not be understood; 130 stopped by Ctrl-C.";

constexpr const char* kHelp = "help";
constexpr const char* kCommands = "Commands";

using Commands = std::vector<std::unique_ptr<Command>>;

void declareEnds(CLI::App& arguments) {
    arguments.set_help_flag("-h,--help", "print this help and exit");
    arguments.set_version_flag("--version", versionText(), "print the version and exit");
}

void declareProgram(CLI::App& program) {
    program.name("beatatlas");
    program.description(kDescription);
    program.footer(kFooter);
    program.require_subcommand(1);
    program.get_formatter()->label("SUBCOMMAND", "COMMAND");
    declareEnds(program);
}

void declareCommand(CLI::App& program, Command& command) {
    CLI::App* arguments = program.add_subcommand(command.name(), command.description());
    arguments->group(command.isHidden() ? "" : kCommands);
    declareEnds(*arguments);
    command.declare(*arguments);
    if (!command.isHidden()) declareConfig(*arguments);
}

void declareHelp(CLI::App& program, std::string& topic) {
    CLI::App* help = program.add_subcommand(kHelp, "Print this help, or that of a command");
    help->group(kCommands);
    declareEnds(*help);
    help->add_option("COMMAND", topic, "one of the commands")->required()->option_text(" ");
}

/** CLI11 would take the next word for the value.
 *  @throws UsageError when nothing follows an option's '=' */
void refuseMissingValues(const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        if (word == "--") return;
        if (word.starts_with("--") && word.ends_with('='))
            throw base::UsageError(base::displayName(word) + " needs a value");
    }
}

/** In the order CLI11 wants them: from the last to the first. Behind "--" it takes the first name
 *  alone for one where others stood before: each of these is marked as a name instead. */
std::vector<std::string> toArguments(const std::vector<std::string>& words) {
    const auto end = std::find(words.begin(), words.end(), "--");
    std::vector<std::string> arguments;
    std::transform(words.begin(), end, std::back_inserter(arguments), guarded);
    if (end != words.end())
        std::transform(end + 1, words.end(), std::back_inserter(arguments), guardedName);
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

/** @throws UsageError when there is no such command */
std::string helpOn(const CLI::App& program, const std::string& topic) {
    std::vector<std::string> names;
    for (const CLI::App* command : program.get_subcommands({})) {
        if (command->get_group().empty()) continue;
        if (command->get_name() == topic) return command->help("beatatlas");
        names.push_back(command->get_name());
    }
    throw base::UsageError("there is no command " + base::displayName(topic) +
                           suggestion(topic, names));
}

/** Null unless the first word names a command. */
const Command* commandOf(const Commands& commands, const std::vector<std::string>& words) {
    if (words.empty()) return nullptr;
    const auto named = std::find_if(commands.begin(), commands.end(), [&](const auto& command) {
        return command->name() == words.front();
    });
    return named == commands.end() ? nullptr : named->get();
}

/** Where the options are told that fit the command line. */
std::string helpPointer(const std::vector<std::string>& words) {
    const Commands commands = makeCommands();
    const bool hasOwnHelp = commandOf(commands, words) != nullptr;
    return " (see beatatlas " + (hasOwnHelp ? words.front() + " " : "") + "--help)";
}

}  // namespace

int Program::run(int argc, const char* const* argv) {
    // A caller may give no words at all, not even the program's name.
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    try {
        return parseAndRun(words);
    } catch (const base::Interrupted& interrupted) {
        return kExitSignal + interrupted.signalNumber();
    } catch (const base::UsageError& error) {
        printError(error.what() + helpPointer(words));
        return kExitUsage;
    } catch (const std::bad_alloc&) {
        printError("there is not enough memory");
        return kExitFailed;
    } catch (const std::exception& error) {
        printError(error.what());
        return kExitFailed;
    }
}

ExitCode Program::parseAndRun(const std::vector<std::string>& words) {
    refuseMissingValues(words);
    if (words == std::vector<std::string>{kHelp}) return parseAndRun({"--help"});
    const Commands commands = makeCommands();
    CLI::App program;
    std::string topic;
    declareProgram(program);
    for (const auto& command : commands) declareCommand(program, *command);
    declareHelp(program, topic);
    // The tool's own calls of itself state all that matters.
    const Command* named = commandOf(commands, words);
    if (named != nullptr && !named->isHidden()) applyConfig(program, words);
    try {
        program.parse(toArguments(words));
    } catch (const CLI::CallForHelp&) {
        results_.write(program.help());
        return kExitDone;
    } catch (const CLI::CallForVersion&) {
        results_.write(versionText());
        return kExitDone;
    } catch (const CLI::ParseError& error) {
        throw base::UsageError(refusalOf(program, error, words));
    }
    for (const auto& command : commands) {
        if (program.got_subcommand(command->name())) return command->run(results_);
    }
    results_.write(helpOn(program, unguarded(topic)));
    return kExitDone;
}

}  // namespace app
