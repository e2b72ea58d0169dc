// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace app {

/** What is wrong with a command line that could not be parsed, in the program's own words.
 *  @param words  the command line after the program's name */
std::string refusalOf(const CLI::App& program, const CLI::ParseError& error,
                      const std::vector<std::string>& words);

}  // namespace app
