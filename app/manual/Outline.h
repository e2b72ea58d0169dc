// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/CommandLine.h"

namespace manual {

/** What stands behind an option or for a positional argument. */
enum class Value {
    none,       ///< it is a flag
    text,       ///< anything that no shell could offer
    words,      ///< one of a few
    track,      ///< a file of music
    tracks,     ///< files of music, folders and playlists
    file,       ///< any file
    folder,     ///< a folder
    catalogue,  ///< a file of SQLite
    settings,   ///< a file of settings
    command,    ///< the name of a command
};

/** One of the values that an option takes, with what it means where the help says so. */
struct Choice {
    std::string word;
    std::string meaning;
};

/** An option or a positional argument, as the command line declares it. */
struct Argument {
    std::string shortName;    ///< "-o", or empty
    std::string longName;     ///< "--output"; empty for a positional argument
    std::string placeholder;  ///< "OUT"; empty for a flag
    std::string group;        ///< its heading in the help
    /** Without the lines that say what single values mean. */
    std::string description;
    std::vector<Choice> choices;
    std::vector<std::string> needs;     ///< long names
    std::vector<std::string> excludes;  ///< long names
    Value value = Value::none;
    bool isRequired = false;
    bool isRepeated = false;

    bool isPositional() const { return longName.empty(); }
    bool isFlag() const { return value == Value::none; }
    /** The short one first. */
    std::vector<std::string> names() const;
};

/** One command, or the program before any. */
struct CommandOutline {
    std::string name;
    std::string description;
    std::vector<Argument> options;
    std::vector<Argument> positionals;

    bool has(const std::string& longName) const;
};

/** The program as its help shows it, hidden commands left out. */
struct ProgramOutline {
    CommandOutline program;
    std::vector<CommandOutline> commands;
};

ProgramOutline outlineOf(app::CommandLine& commandLine);

/** A description for one line of a menu: without remarks behind a semicolon or in brackets. */
std::string briefly(const Argument& argument);

}  // namespace manual
