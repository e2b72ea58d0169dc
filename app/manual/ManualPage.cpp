// SPDX-License-Identifier: MIT
#include "manual/ManualPage.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "cli/toolVersion.h"
#include "manual/roff.h"

namespace manual {

namespace {

constexpr const char* kSection = ".SH ";

std::string inCapitals(std::string text) {
    for (char& letter : text)
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    return text;
}

/** As the line after a name is written: "print the key of tracks". */
std::string inSmallBeginning(std::string text) {
    text.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(text.front())));
    return text;
}

std::string entry(const std::string& term, const std::string& text) {
    return ".TP\n" + term + "\n" + text + "\n";
}

std::map<std::string, std::string> sectionsOf(const std::string& text) {
    static const std::set<std::string> known = {"SYNOPSIS", "DESCRIPTION", "EXIT STATUS",
                                                "EXAMPLES", "SEE ALSO"};
    std::map<std::string, std::string> sections;
    std::istringstream lines(text);
    std::string* section = nullptr;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(kSection)) {
            const std::string name = line.substr(std::string(kSection).size());
            if (!known.contains(name)) throw std::runtime_error("no page has a section " + name);
            section = &sections[name];
        } else if (section != nullptr) {
            *section += line + "\n";
        } else if (!line.starts_with(".\\\"")) {
            throw std::runtime_error("a text begins without a section");
        }
    }
    for (const char* needed : {"DESCRIPTION", "EXAMPLES"})
        if (!sections.contains(needed))
            throw std::runtime_error(std::string("a section is missing: ") + needed);
    return sections;
}

/** "-o, --output OUT" */
std::string term(const Argument& option) {
    std::string names;
    for (const std::string& name : option.names())
        names += (names.empty() ? "" : ", ") + roffBold(name);
    return option.isFlag() ? names : names + " " + roffItalic(option.placeholder);
}

/** "Needs --json. Does not go with --key-notation." */
std::string conditionsOf(const Argument& option) {
    std::string text;
    for (const std::string& name : option.needs) text += "Needs " + roffBold(name) + ".\n";
    for (const std::string& name : option.excludes)
        text += "Does not go with " + roffBold(name) + ".\n";
    return text;
}

/** What single values mean, further to the right. */
std::string choicesOf(const Argument& option) {
    const bool areExplained = !option.choices.empty() && !option.choices.front().meaning.empty();
    if (!areExplained) return {};
    std::string choices = ".RS\n";
    for (const Choice& choice : option.choices)
        choices += entry(roffBold(choice.word), roffText(choice.meaning));
    return choices + ".RE\n";
}

std::string entryOf(const Argument& option) {
    const std::string text = roffText(option.description);
    const std::string conditions = conditionsOf(option);
    const std::string choices = choicesOf(option);
    std::string whole = entry(term(option), text.empty() ? "\\&" : text) + choices;
    if (!conditions.empty()) whole += choices.empty() ? ".br\n" : ".IP\n";
    return whole + conditions;
}

/** The name of a command's page; without one, of the program's. */
std::string pageName(const std::string& command) {
    return command.empty() ? "beatatlas" : "beatatlas\\-" + command;
}

std::string reference(const std::string& command, const std::string& punctuation = "") {
    return ".BR " + pageName(command) + " (1)" + punctuation;
}

}  // namespace

ManualPage::ManualPage(const ProgramOutline& program, const CommandOutline& command,
                       const std::string& text, std::string date)
    : program_(program), command_(command), written_(sectionsOf(text)), date_(std::move(date)) {}

std::string ManualPage::name() const {
    return isOfProgram() ? "beatatlas" : "beatatlas-" + command_.name;
}

std::string ManualPage::page() const {
    return heading() + synopsis() + ".SH DESCRIPTION\n" + written_.at("DESCRIPTION") +
           commandList() + arguments() + options() + exitStatus() + environment() + files() +
           ".SH EXAMPLES\n" + written_.at("EXAMPLES") + seeAlso();
}

std::string ManualPage::heading() const {
    const std::string summary =
        isOfProgram() ? "tempo, beats and keys of music tracks, and pictures of their waveforms"
                      : inSmallBeginning(command_.description);
    const std::string title = pageName(isOfProgram() ? "" : command_.name);
    return fmt::format(".\\\" SPDX-License-Identifier: MIT\n"
                       ".\\\" Made from the program's own options.\n"
                       ".TH {} 1 {} \"Beat Atlas {}\" \"Beat Atlas\"\n"
                       ".SH NAME\n{} \\- {}\n",
                       inCapitals(title), date_, app::toolVersion(), title, roffText(summary));
}

std::string ManualPage::synopsis() const {
    if (written_.contains("SYNOPSIS")) return ".SH SYNOPSIS\n" + written_.at("SYNOPSIS");
    std::string line = roffBold(isOfProgram() ? "beatatlas" : "beatatlas " + command_.name) + " [" +
                       roffItalic("OPTION") + "]...";
    for (const Argument& option : command_.options)
        if (option.isRequired)
            line += " " + roffBold(option.names().front()) + " " + roffItalic(option.placeholder);
    for (const Argument& argument : command_.positionals) {
        const std::string name =
            roffItalic(argument.placeholder) + (argument.isRepeated ? "..." : "");
        line += argument.isRequired ? " " + name : " [" + name + "]";
    }
    return ".SH SYNOPSIS\n" + line + "\n";
}

std::string ManualPage::commandList() const {
    if (!isOfProgram()) return {};
    std::string list = ".SH COMMANDS\n";
    for (const CommandOutline& command : program_.commands)
        list += entry(reference(command.name), roffText(command.description));
    return list;
}

std::string ManualPage::arguments() const {
    if (command_.positionals.empty()) return {};
    std::string section = ".SH ARGUMENTS\n";
    for (const Argument& argument : command_.positionals)
        section += entry(roffItalic(argument.placeholder) + (argument.isRepeated ? "..." : ""),
                         roffText(argument.description));
    return section;
}

std::string ManualPage::options() const {
    std::vector<std::string> groups;
    for (const Argument& option : command_.options)
        if (std::find(groups.begin(), groups.end(), option.group) == groups.end())
            groups.push_back(option.group);
    std::string section = ".SH OPTIONS\n";
    for (const std::string& group : groups) {
        if (group != "Options") section += ".SS " + roffText(group) + "\n";
        for (const Argument& option : command_.options)
            if (option.group == group) section += entryOf(option);
    }
    return section;
}

std::string ManualPage::exitStatus() const {
    if (written_.contains("EXIT STATUS")) return ".SH EXIT STATUS\n" + written_.at("EXIT STATUS");
    return ".SH EXIT STATUS\n" + entry("0", "All is well.") +
           entry("1", "A track could not be analysed, or a result could not be written.\n"
                      "The other tracks of the command are analysed all the same.") +
           entry("2", "The command line could not be understood.") +
           entry("130", "Stopped by Ctrl\\-C.");
}

std::string ManualPage::environment() const {
    std::string list;
    if (command_.has("--config") || isOfProgram())
        list +=
            entry("XDG_CONFIG_HOME",
                  "Where the folder with the settings is; otherwise it is in\n.IR \\(ti/.config .");
    if (command_.has("--catalogue") || isOfProgram())
        list +=
            entry("XDG_DATA_HOME", "Where the folder with the catalogue is; otherwise it is in\n"
                                   ".IR \\(ti/.local/share .");
    if (command_.has("--raw") || command_.name == "doctor" || isOfProgram())
        list +=
            entry("TMPDIR", "Where files are kept that go with the process; otherwise that is in\n"
                            ".I /var/tmp\nor\n.IR /tmp .");
    return list.empty() ? list : ".SH ENVIRONMENT\n" + list;
}

std::string ManualPage::files() const {
    std::string list;
    if (command_.has("--config") || isOfProgram())
        list += entry("\\fI\\(ti/.config/beatatlas/config.ini\\fR",
                      "Settings: values for options that the command line does not give, see\n" +
                          (isOfProgram() ? "SETTINGS above." : reference("", ".")));
    if (command_.has("--catalogue") || isOfProgram())
        list += entry("\\fI\\(ti/.local/share/beatatlas/catalogue.sqlite\\fR",
                      "The catalogue, unless\n.B \\-\\-catalogue\nnames another.");
    return list.empty() ? list : ".SH FILES\n" + list;
}

std::string ManualPage::seeAlso() const {
    std::vector<std::string> commands;
    if (!isOfProgram()) commands.emplace_back();
    if (written_.contains("SEE ALSO")) {
        std::istringstream words(written_.at("SEE ALSO"));
        for (std::string word; words >> word;) commands.push_back(word);
    }
    std::string section = ".SH SEE ALSO\n";
    for (const std::string& command : commands)
        section += reference(command, &command == &commands.back() ? "" : ",") + "\n";
    return section;
}

}  // namespace manual
