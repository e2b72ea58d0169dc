// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

#include "manual/Outline.h"

namespace manual {

/** The manual page of one command, or of the program: what the help says of arguments and options,
 *  between the sections that a file of pages/ adds to it.
 *
 *  Such a file holds sections of man(7), each below its ".SH" line: DESCRIPTION and EXAMPLES, which
 *  every page has; SYNOPSIS or EXIT STATUS in place of the usual ones; and SEE ALSO, the names of
 *  commands, separated by spaces. */
class ManualPage {
public:
    /** @param program  all commands
     *  @param date     "2026-11-22"
     *  @throws std::runtime_error when the text lacks a section or has a foreign one */
    ManualPage(const ProgramOutline& program, const CommandOutline& command,
               const std::string& text, std::string date);

    /** In the order of man-pages(7). */
    std::string page() const;

    /** "beatatlas-analyze" */
    std::string name() const;

private:
    bool isOfProgram() const { return &command_ == &program_.program; }
    std::string heading() const;
    std::string synopsis() const;
    std::string commandList() const;
    std::string arguments() const;
    std::string options() const;
    std::string exitStatus() const;
    std::string environment() const;
    std::string files() const;
    std::string seeAlso() const;

    const ProgramOutline& program_;
    const CommandOutline& command_;
    std::map<std::string, std::string> written_;
    std::string date_;
};

}  // namespace manual
