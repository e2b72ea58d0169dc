// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "manual/completions.h"
#include "manual/shellText.h"

namespace manual {

namespace {

constexpr const char* kFunctions = R"(
# Whether no command stands there yet, or this one. The first word is the command.
function __beatatlas_begins
    test (count (commandline -opc)) -eq 1
end
function __beatatlas_is
    set -l words (commandline -opc)
    test (count $words) -gt 1; and test $words[2] = $argv[1]
end
# Whether it is this one, and options may follow.
function __beatatlas_takes
    __beatatlas_is $argv[1]; and not contains -- -- (commandline -opc)
end

# Folders and files with one of the endings; any files where there are none.
function __beatatlas_files
    set -l word (commandline -ct | string replace -r -- '^--[^=]*=' '')
    set -l names (complete -C "__beatatlas_none $word")
    set -l ending '(?:/|\.(?:'(string join '|' $argv)'))(?:\t.*)?$'
    set -l fitting (string match -ri -- ".*$ending" $names)
    if test (count $fitting) -gt 0
        printf '%s\n' $fitting
    else if test (count $names) -gt 0
        printf '%s\n' $names
    end
end

complete -c beatatlas -f
)";

std::string fishQuoted(const std::string& text) {
    std::string word = "'";
    for (const char letter : text) {
        if (letter == '\'' || letter == '\\') word += '\\';
        word += letter;
    }
    return word + "'";
}

/** The words of a list; a tab stands before what one means. */
std::string wordsOf(const Argument& argument) {
    std::string words;
    for (const Choice& choice : argument.choices) {
        words += words.empty() ? "" : " ";
        words += choice.word;
        if (!choice.meaning.empty()) words += "\\t" + fishQuoted(choice.meaning);
    }
    return "-a " + fishQuoted(words);
}

/** What is offered for a value. */
std::string offerOf(const Argument& argument) {
    switch (argument.value) {
    case Value::none:
    case Value::text:
        return {};
    case Value::words:
        return wordsOf(argument);
    case Value::command:
        return {};
    case Value::folder:
        return "-a '(__fish_complete_directories)'";
    default: {
        const std::vector<std::string> endings = endingsOf(argument.value);
        if (endings.empty()) return "-F";
        return "-k -a '(__beatatlas_files " + joined(endings, " ") + ")'";
    }
    }
}

std::string optionLine(const CommandOutline& command, const Argument& option) {
    std::string line = fmt::format("complete -c beatatlas -n '__beatatlas_takes {}'", command.name);
    if (!option.shortName.empty()) line += " -s " + option.shortName.substr(1);
    line += " -l " + option.longName.substr(2);
    if (!option.isFlag()) line += option.value == Value::file ? " -r" : " -x";
    const std::string offer = option.isFlag() ? "" : offerOf(option);
    return line + (offer.empty() ? "" : " " + offer) + " -d " + fishQuoted(briefly(option)) + "\n";
}

std::string positionalLine(const CommandOutline& command) {
    if (command.positionals.empty()) return {};
    const std::string offer = offerOf(command.positionals.front());
    if (offer.empty()) return {};
    return fmt::format("complete -c beatatlas -n '__beatatlas_is {}' {}\n", command.name, offer);
}

/** Commands at the beginning, and behind `help`. */
std::string commandLine(const CommandOutline& command) {
    return fmt::format("complete -c beatatlas -n '__beatatlas_begins; or __beatatlas_is help' "
                       "-a {} -d {}\n",
                       command.name, fishQuoted(command.description));
}

}  // namespace

std::string fishCompletion(const ProgramOutline& outline) {
    std::string text = std::string(kMadeForShells) + kFunctions;
    for (const Argument& option : outline.program.options)
        text += fmt::format("complete -c beatatlas -n __beatatlas_begins{} -l {} -d {}\n",
                            option.shortName.empty() ? "" : " -s " + option.shortName.substr(1),
                            option.longName.substr(2), fishQuoted(option.description));
    for (const CommandOutline& command : outline.commands) text += commandLine(command);
    for (const CommandOutline& command : outline.commands) {
        text += "\n# " + command.name + "\n" + positionalLine(command);
        for (const Argument& option : command.options) text += optionLine(command, option);
    }
    return text;
}

}  // namespace manual
