// SPDX-License-Identifier: MIT
#include "cli/Program.h"

#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/commandTable.h"
#include "cli/messages.h"
#include "cli/toolVersion.h"

namespace app {

namespace {

constexpr const char* kDescription = "Beat Atlas finds the tempo, the beat grid and the key of "
                                     "music tracks and draws their waveforms.";

constexpr const char* kFooter =
    "A name that begins with '-' goes behind '--': beatatlas analyze -- -intro.mp3\n"
    "\n"
    "Results go to standard output, everything else to standard error.\n"
    "Exit status: 0 all is well; 1 a track could not be analysed or a result could not be\n"
    "written (the other tracks of the command are analysed all the same); 2 the command line\n"
    "could not be understood; 130 stopped by Ctrl-C.";

void declareProgram(CLI::App& program) {
    program.name("beatatlas");
    program.description(kDescription);
    program.footer(kFooter);
    program.require_subcommand(1);
    program.set_help_flag("-h,--help", "print this help and exit");
    program.set_version_flag("--version", versionText(), "print the version and exit");
}

void declareCommand(CLI::App& program, Command& command) {
    CLI::App* arguments = program.add_subcommand(command.name(), command.description());
    arguments->set_help_flag("-h,--help", "print this help and exit");
    command.declare(*arguments);
}

/** CLI11 would take the next word for the value.
 *  @throws UsageError when nothing follows an option's '=' */
void refuseMissingValues(int argc, const char* const* argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--") return;
        if (argument.starts_with("--") && argument.ends_with('='))
            throw base::UsageError(base::displayName(argument) + " needs a value");
    }
}

/** In the order CLI11 wants them: from the last to the first. */
std::vector<std::string> toArguments(int argc, const char* const* argv) {
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) arguments.push_back(guarded(argv[i]));
    return arguments;
}

}  // namespace

int Program::run(int argc, const char* const* argv) {
    try {
        return parseAndRun(argc, argv);
    } catch (const base::Interrupted& interrupted) {
        return kExitSignal + interrupted.signalNumber();
    } catch (const base::UsageError& error) {
        printError(error.what());
        return kExitUsage;
    } catch (const std::bad_alloc&) {
        printError("there is not enough memory");
        return kExitFailed;
    } catch (const std::exception& error) {
        printError(error.what());
        return kExitFailed;
    }
}

ExitCode Program::parseAndRun(int argc, const char* const* argv) {
    refuseMissingValues(argc, argv);
    const auto commands = makeCommands();
    CLI::App program;
    declareProgram(program);
    for (const auto& command : commands) declareCommand(program, *command);
    try {
        program.parse(toArguments(argc, argv));
    } catch (const CLI::CallForHelp&) {
        results_.write(program.help());
        return kExitDone;
    } catch (const CLI::CallForVersion&) {
        results_.write(versionText());
        return kExitDone;
    } catch (const CLI::ParseError& error) {
        if (program.get_subcommands().empty() && argc > 1 && argv[1][0] != '-') {
            throw base::UsageError("there is no command " + base::displayName(argv[1]) +
                                   " (see beatatlas --help)");
        }
        throw base::UsageError(base::displayName(error.what()) + " (see beatatlas --help)");
    }
    for (const auto& command : commands) {
        if (program.got_subcommand(command->name())) return command->run(results_);
    }
    return kExitUsage;
}

}  // namespace app
