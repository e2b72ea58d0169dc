// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** @name What this program was built with
 *  @{ */

/** "GCC 12.2.0" */
std::string compilerText();

/** The kind of build and the flags that decide over arithmetic and speed; flags that name folders
 *  are left out, so that the program is the same wherever it is built. */
std::string flagsText();
/** @} */

}  // namespace app
