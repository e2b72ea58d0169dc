// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** @name File names in brackets CLI11 takes an argument such as "[a,b]" for a list of two. Such
 *  arguments are marked before it sees them, and the mark is removed from the names it returns.
 *  @{ */
std::string guarded(const std::string& argument);
std::string unguarded(const std::string& argument);
/** @} */

}  // namespace app
