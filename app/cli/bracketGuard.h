// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** @name Names that CLI11 would take for something else
 *  An argument such as "[a,b]" is a list of two to it, and one such as "-a" an option. Such
 *  arguments are marked before it sees them, and the mark is removed from the names it returns.
 *  @{ */
std::string guarded(const std::string& argument);
/** Of a word that is a name whatever it looks like. */
std::string guardedName(const std::string& argument);
std::string unguarded(const std::string& argument);
/** @} */

}  // namespace app
