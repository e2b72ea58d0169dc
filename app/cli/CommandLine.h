// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/Command.h"

namespace app {

/** What can stand behind `beatatlas`: every command with its arguments. The program parses with it,
 *  and what describes the program (manual pages, completions) is made from it. */
class CommandLine {
public:
    CommandLine();
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    CLI::App& parser() { return *parser_; }

    /** In the order of the help. */
    const std::vector<std::unique_ptr<Command>>& commands() const { return commands_; }

    /** The command of that name; null where there is none. `help` is none of them. */
    const Command* find(const std::string& name) const;

    /** What `beatatlas help` was asked about. */
    const std::string& helpTopic() const { return helpTopic_; }

    static constexpr const char* kHelp = "help";

private:
    void declareProgram();
    void declareCommand(Command& command);
    void declareHelp();

    std::vector<std::unique_ptr<Command>> commands_;
    std::string helpTopic_;
    std::unique_ptr<CLI::App> parser_;
};

}  // namespace app
