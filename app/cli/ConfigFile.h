// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace app {

/** A file of settings: values for options that the command line does not give.
 *
 *      key-notation = camelot     # of every command that has this option
 *      memory = 2G
 *      [export]                   # of this command alone
 *      to = jams
 *
 *  Options are named as on the command line, without their dashes; flags are true or false. A value
 *  may stand in double quotes. Lines that begin with '#' or ';' are remarks, and so is what follows
 *  a '#' behind a space outside of quotes. */
class ConfigFile {
public:
    /** Reads the file. @throws UsageError when it cannot be read, or with file and line where one
     *  makes no sense */
    explicit ConfigFile(std::string path);

    /** Gives a command's options their values, before the command line is parsed, which goes before
     *  the settings. One that excludes an option of the command line is left out.
     *  @param program  with all of its commands
     *  @param words    the command line, its first word the command's name
     *  @throws UsageError with file and line where there is no such command or option, or where it
     *          takes no such value */
    void applyTo(CLI::App& program, const std::vector<std::string>& words) const;

    /** What an option is given, by command; for all commands by the empty name. */
    std::map<std::string, std::string> valuesOf(const std::string& option) const;

private:
    struct Setting {
        int line;
        std::string command;  ///< empty: any
        std::string name;
        std::string value;
    };

    /** "[export]", with or without settings below it. */
    struct Heading {
        int line;
        std::string command;
    };

    void parse(const std::string& text);
    void parseLine(const std::string& line, int number, std::string& command);
    void requireKnown(const CLI::App& program, const Heading& heading) const;
    void requireKnown(const CLI::App& program, const Setting& setting) const;
    void apply(CLI::Option& option, const Setting& setting) const;
    [[noreturn]] void refuse(int line, const std::string& reason) const;

    std::string path_;
    std::vector<Heading> headings_;
    std::vector<Setting> settings_;
};

/** @name Which settings a command takes
 *  @{ */

/** Declares --config and --no-config for a command. */
void declareConfig(CLI::App& arguments);

/** The user's own file of settings; empty where there is none. */
std::string usersOwnSettings();

/** Applies the file that the command line names, else the user's own:
 *  $XDG_CONFIG_HOME/beatatlas/config.ini or ~/.config/beatatlas/config.ini, if it is there.
 *  @throws UsageError as ConfigFile */
void applyConfig(CLI::App& program, const std::vector<std::string>& words);
/** @} */

}  // namespace app
