// SPDX-License-Identifier: MIT
#include "cli/Program.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <new>
#include <set>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "cli/CommandLine.h"
#include "cli/ConfigFile.h"
#include "cli/bracketGuard.h"
#include "cli/messages.h"
#include "cli/refusal.h"
#include "cli/suggestion.h"
#include "cli/toolVersion.h"

namespace app {

namespace {

/** CLI11 would take the next word for the value.
 *  @throws UsageError when nothing follows an option's '=' */
void refuseMissingValues(const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        if (word == "--") return;
        if (word.starts_with("--") && word.ends_with('='))
            throw base::UsageError(base::displayName(word) + " needs a value");
    }
}

/** An option that takes the name of a file or folder has no value where that is empty. Tracks are
 *  no options: each is judged by itself. @throws UsageError naming the option */
void refuseEmptyNames(const CLI::App& command) {
    static const std::set<std::string> named = {"CATALOGUE", "DIR", "FILE", "FILE|KEY", "OUT"};
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional() || !named.contains(option->get_option_text())) continue;
        for (const std::string& name : option->results())
            if (unguarded(name).empty())
                throw base::UsageError("--" + option->get_lnames().front() +
                                       " needs a value, not an empty word");
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

/** Where the options are told that fit the command line. */
std::string helpPointer(const std::vector<std::string>& words) {
    const bool hasOwnHelp = !words.empty() && CommandLine().find(words.front()) != nullptr;
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
    if (words == std::vector<std::string>{CommandLine::kHelp}) return parseAndRun({"--help"});
    CommandLine commandLine;
    CLI::App& parser = commandLine.parser();
    const Command* named = words.empty() ? nullptr : commandLine.find(words.front());
    if (named != nullptr && named->takesSettings()) applyConfig(parser, words);
    try {
        parser.parse(toArguments(words));
    } catch (const CLI::CallForHelp&) {
        results_.write(parser.help());
        return kExitDone;
    } catch (const CLI::CallForVersion&) {
        results_.write(versionText());
        return kExitDone;
    } catch (const CLI::ParseError& error) {
        throw base::UsageError(refusalOf(parser, error, words));
    }
    for (const auto& command : commandLine.commands()) {
        if (!parser.got_subcommand(command->name())) continue;
        refuseEmptyNames(*parser.get_subcommand(command->name()));
        return command->run(results_);
    }
    results_.write(helpOn(parser, unguarded(commandLine.helpTopic())));
    return kExitDone;
}

}  // namespace app
