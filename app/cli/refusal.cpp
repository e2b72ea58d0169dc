// SPDX-License-Identifier: MIT
#include "cli/refusal.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "base/displayName.h"
#include "cli/bracketGuard.h"
#include "cli/suggestion.h"

namespace app {

namespace {

bool isOption(std::string_view word) {
    return word.size() > 1 && word.front() == '-';
}

bool isFile(const std::string& name) {
    std::error_code failure;
    return std::filesystem::is_regular_file(name, failure);
}

std::string namingHint(const std::string& word) {
    const std::string name = base::displayName(word);
    return "; a file " + name + " is written ./" + name + ", or goes behind --";
}

/** If a file's name looks like an option: how to name the file. */
std::string dashHint(const std::vector<std::string>& words) {
    const auto end = std::find(words.begin(), words.end(), "--");
    const auto found = std::find_if(
        words.begin(), end, [](const std::string& word) { return isOption(word) && isFile(word); });
    return found == end ? "" : namingHint(*found);
}

std::vector<std::string> namesOfOptions(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
        for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    }
    return names;
}

std::string unknownCommand(const CLI::App& program, const std::string& word) {
    const std::string shown = base::displayName(word);
    if (isOption(word)) return "a command comes first, then " + shown;
    if (isFile(word))
        return "there is no command " + shown + "; did you mean analyze " + shown + "?";
    std::vector<std::string> names;
    for (const CLI::App* command : program.get_subcommands({})) {
        if (!command->get_group().empty()) names.push_back(command->get_name());
    }
    return "there is no command " + shown + suggestion(word, names);
}

/** The first word that no argument took. */
std::string firstExtra(const CLI::App& program) {
    for (const std::string& word : program.remaining(true)) {
        if (word != "--") return unguarded(word);
    }
    return {};
}

/** The whole word, of which the first letters were taken for options. */
std::string wholeWord(const std::string& rest, const std::vector<std::string>& words) {
    const auto found = std::find_if(words.begin(), words.end(), [&](const std::string& word) {
        return isOption(word) && word.ends_with(rest.substr(1));
    });
    return found == words.end() ? rest : *found;
}

std::string unexpected(const CLI::App& command, const std::string& word,
                       const std::vector<std::string>& words) {
    const auto behind = std::find(words.begin(), words.end(), "--");
    const bool isName = std::find(behind, words.end(), word) != words.end();
    if (isName || !isOption(word)) return base::displayName(word) + " is one argument too many";
    const std::string refused = "there is no option " + base::displayName(word);
    if (const std::string hint = dashHint(words); !hint.empty()) return refused + hint;
    if (word.find('.') != std::string::npos) return refused + namingHint(wholeWord(word, words));
    return refused + suggestion(word.substr(0, word.find('=')), namesOfOptions(command));
}

/** The parser's own message begins with the option's name. */
std::string wrongNumberOfValues(const std::string& text) {
    const std::string option = text.substr(0, text.find(':'));
    if (text.ends_with(" missing")) return option + " needs a value";
    if (text.find("At Most") != std::string::npos) return option + " may be given only once";
    return text;
}

}  // namespace

std::string refusalOf(const CLI::App& program, const CLI::ParseError& error,
                      const std::vector<std::string>& words) {
    if (words.empty()) return "a command is missing";
    if (program.get_subcommands().empty() || isOption(words.front()))
        return unknownCommand(program, words.front());
    // A misspelt option may be the reason why another one is missing.
    const std::string extra = firstExtra(program);
    const CLI::App& command = *program.get_subcommands().front();
    if (!extra.empty()) return unexpected(command, extra, words);
    const bool isMismatch = dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr;
    const std::string text = isMismatch ? wrongNumberOfValues(error.what()) : error.what();
    return base::displayName(text) + dashHint(words);
}

}  // namespace app
