// SPDX-License-Identifier: MIT
#include "manual/Outline.h"

#include <algorithm>
#include <map>
#include <set>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/offeredWords.h"

namespace manual {

namespace {

std::string placeholderOf(const CLI::Option& option) {
    // Of a positional argument, the option's text only says whether there may be several.
    return option.get_positional() ? option.get_name() : option.get_option_text();
}

/** What the value is, by how the help writes it. */
Value valueOf(const Argument& argument, const std::vector<std::string>& words) {
    static const std::map<std::string, Value> byName = {{"--catalogue", Value::catalogue},
                                                        {"--config", Value::settings},
                                                        {"FILE", Value::track},
                                                        {"FILE|KEY", Value::track},
                                                        {"PATH", Value::tracks},
                                                        {"A", Value::file},
                                                        {"B", Value::file},
                                                        {"OUT", Value::file},
                                                        {"DIR", Value::folder},
                                                        {"CATALOGUE", Value::catalogue},
                                                        {"COMMAND", Value::command}};
    if (argument.placeholder.empty()) return Value::none;
    if (!words.empty()) return Value::words;
    for (const std::string& name : {argument.longName, argument.placeholder})
        if (const auto found = byName.find(name); found != byName.end()) return found->second;
    return Value::text;
}

std::vector<std::string> longNames(const std::set<CLI::Option*>& options) {
    std::vector<std::string> names;
    for (const CLI::Option* option : options) names.push_back("--" + option->get_lnames().front());
    std::sort(names.begin(), names.end());
    return names;
}

/** The word that a line of a description explains: "off: no tempo" or "csv  a table". */
std::string explainedWord(const std::string& line, const std::vector<std::string>& words) {
    for (const std::string& word : words)
        if (line.starts_with(word + ":") || line.starts_with(word + "  ")) return word;
    return {};
}

/** Help breaks lines by hand; those that explain a word begin anew, the others go on. */
void describe(Argument& argument, const std::string& help, const std::vector<std::string>& words) {
    std::string* text = &argument.description;
    for (const std::string& line : CLI::detail::split(help, '\n')) {
        const std::string word = explainedWord(line, words);
        if (!word.empty()) {
            std::string meaning = line.substr(word.size() + 1);
            argument.choices.push_back({word, CLI::detail::trim(meaning)});
            text = &argument.choices.back().meaning;
        } else {
            *text += (text->empty() ? "" : " ") + line;
        }
    }
    if (!argument.choices.empty()) return;
    for (const std::string& word : words) argument.choices.push_back({word, ""});
}

Argument argumentOf(const CLI::Option& option) {
    Argument argument;
    if (!option.get_snames().empty()) argument.shortName = "-" + option.get_snames().front();
    if (!option.get_lnames().empty()) argument.longName = "--" + option.get_lnames().front();
    if (option.get_expected_max() > 0) argument.placeholder = placeholderOf(option);
    argument.group = option.get_group();
    argument.needs = longNames(option.get_needs());
    argument.excludes = longNames(option.get_excludes());
    argument.isRequired = option.get_required();
    argument.isRepeated = option.get_expected_max() > 1;
    const std::vector<std::string> words = app::offeredWords(option);
    argument.value = valueOf(argument, words);
    describe(argument, option.get_description(), words);
    return argument;
}

CommandOutline commandOf(const CLI::App& command) {
    CommandOutline outline;
    outline.name = command.get_name();
    outline.description = command.get_description();
    for (const CLI::Option* option : command.get_options()) {
        const Argument argument = argumentOf(*option);
        (argument.isPositional() ? outline.positionals : outline.options).push_back(argument);
    }
    return outline;
}

}  // namespace

std::vector<std::string> Argument::names() const {
    std::vector<std::string> names;
    if (!shortName.empty()) names.push_back(shortName);
    if (!longName.empty()) names.push_back(longName);
    return names;
}

bool CommandOutline::has(const std::string& wanted) const {
    return std::any_of(options.begin(), options.end(),
                       [&](const Argument& option) { return option.longName == wanted; });
}

ProgramOutline outlineOf(app::CommandLine& commandLine) {
    ProgramOutline outline;
    outline.program = commandOf(commandLine.parser());
    for (const CLI::App* command : commandLine.parser().get_subcommands({})) {
        if (command->get_group().empty()) continue;
        outline.commands.push_back(commandOf(*command));
    }
    return outline;
}

std::string briefly(const Argument& argument) {
    std::string text = argument.description;
    if (text.empty() || text == "one of") {
        std::vector<std::string> words;
        for (const Choice& choice : argument.choices) words.push_back(choice.word);
        return fmt::format("{}", fmt::join(words, ", "));
    }
    for (const char* remark : {"; ", " (", ": say ", ", say "})
        text = text.substr(0, text.find(remark));
    if (text.ends_with(':')) text.pop_back();
    return text;
}

}  // namespace manual
