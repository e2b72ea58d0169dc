// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "manual/Outline.h"

namespace manual {

/** @name Files by which shells complete a command line of beatatlas
 *  They offer commands, options and their values; for files of music those with an ending of music,
 *  and all files where there is none; behind "--" positional arguments alone.
 *  @{ */

/** Needs nothing but bash 4.4 itself. */
std::string bashCompletion(const ProgramOutline& outline);
std::string zshCompletion(const ProgramOutline& outline);
std::string fishCompletion(const ProgramOutline& outline);
/** @} */

}  // namespace manual
