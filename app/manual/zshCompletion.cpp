// SPDX-License-Identifier: MIT
#include <cctype>

#include <fmt/format.h>

#include "manual/completions.h"
#include "manual/shellText.h"

namespace manual {

namespace {

/** Within the brackets of what _arguments reads. */
std::string escaped(const std::string& text) {
    std::string safe;
    for (const char letter : text) {
        if (letter == '[' || letter == ']' || letter == ':' || letter == '\\') safe += '\\';
        safe += letter;
    }
    return safe;
}

/** An element of a list that is evaluated: every letter that could mean something is escaped. */
std::string element(const std::string& text) {
    std::string safe;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        const bool isPlain = std::isalnum(byte) != 0 || byte >= 0x80;
        safe += isPlain ? std::string(1, letter) : std::string("\\") + letter;
    }
    return safe;
}

std::string withoutColons(std::string text) {
    for (char& letter : text)
        if (letter == ':') letter = ',';
    return text;
}

std::string wordsOf(const Argument& argument) {
    std::string words;
    for (const Choice& choice : argument.choices) {
        words += words.empty() ? "" : " ";
        words += element(choice.word);
        if (!choice.meaning.empty()) words += "\\:" + element(withoutColons(choice.meaning));
    }
    const bool areExplained = words.find("\\:") != std::string::npos;
    return (areExplained ? "((" : "(") + words + (areExplained ? "))" : ")");
}

/** Of what _arguments reads, the part that says what is offered. */
std::string actionOf(const Argument& argument) {
    switch (argument.value) {
    case Value::none:
    case Value::text:
        return " ";
    case Value::words:
        return wordsOf(argument);
    case Value::command:
        return "_beatatlas_commands";
    case Value::folder:
        return "_files -/";
    default: {
        const std::vector<std::string> endings = endingsOf(argument.value);
        if (endings.empty()) return "_files";
        return "_files -g \"*.(#i)(" + joined(endings, "|") + ")(-.)\"";
    }
    }
}

/** Names that are not offered behind this one: its own, and those it excludes. */
std::string exclusionOf(const Argument& option) {
    std::vector<std::string> names = option.names();
    names.insert(names.end(), option.excludes.begin(), option.excludes.end());
    const bool isEnd = option.longName == "--help" || option.longName == "--version";
    return isEnd ? "(- : *)" : "(" + joined(names, " ") + ")";
}

std::string argumentLine(const Argument& option, const std::string& name) {
    const bool isLong = name.starts_with("--");
    std::string text = exclusionOf(option) + name;
    if (!option.isFlag()) text += isLong ? "=" : "+";
    text += "[" + escaped(briefly(option)) + "]";
    if (!option.isFlag()) text += ":" + escaped(option.placeholder) + ":" + actionOf(option);
    return "                " + quoted(text) + " \\\n";
}

std::string caseOf(const CommandOutline& command) {
    std::string lines;
    for (const Argument& option : command.options)
        for (const std::string& name : option.names()) lines += argumentLine(option, name);
    for (const Argument& argument : command.positionals) {
        const std::string prefix = argument.isRepeated ? "*:" : ":";
        lines += "                " +
                 quoted(prefix + argument.placeholder + ":" + actionOf(argument)) + " \\\n";
    }
    lines.resize(lines.size() - 3);  // the last line goes on nowhere
    return fmt::format("        {})\n            _arguments -s -S : \\\n{}\n            ;;\n",
                       command.name, lines);
}

std::string commandList(const ProgramOutline& outline) {
    std::string list = "\n_beatatlas_commands() {\n    local -a commands=(\n";
    for (const CommandOutline& command : outline.commands)
        list += "        " + quoted(command.name + ":" + command.description) + "\n";
    return list + "    )\n    _describe -t commands command commands\n}\n";
}

constexpr const char* kBegin = R"(
_beatatlas() {
    local curcontext=$curcontext state line ret=1
    typeset -A opt_args
    _arguments -C -s -S : \
        '(- : *)-h[print the help and exit]' \
        '(- : *)--help[print the help and exit]' \
        '(- : *)--version[print the version and exit]' \
        '1: :_beatatlas_commands' \
        '*:: :->arguments' && ret=0
    [[ $state == arguments ]] || return ret
    curcontext=${curcontext%:*}-$words[1]:
    case $words[1] in
)";

constexpr const char* kEnd = R"(    esac
}

_beatatlas "$@"
)";

}  // namespace

std::string zshCompletion(const ProgramOutline& outline) {
    std::string cases;
    for (const CommandOutline& command : outline.commands) cases += caseOf(command);
    return std::string("#compdef beatatlas\n") + kMadeForShells + commandList(outline) + kBegin +
           cases + kEnd;
}

}  // namespace manual
