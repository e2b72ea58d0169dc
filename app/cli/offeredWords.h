// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace app {

/** @name What a shell offers for the value of an option
 *  They are kept in the description of the option's validator, which nothing else shows: help names
 *  every value by a placeholder.
 *  @{ */

/** The same validator, whose option then has these words. */
CLI::Validator offering(CLI::Validator validator, const std::vector<std::string>& words);

/** The words of an option; none where it takes anything. */
std::vector<std::string> offeredWords(const CLI::Option& option);
/** @} */

}  // namespace app
