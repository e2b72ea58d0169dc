// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** @name Messages for people, one line each on standard error
 *  @{ */
void printError(const std::string& text);
void printFileError(const std::string& path, const std::string& reason);
void printFileWarning(const std::string& path, const std::string& text);
void printFileNote(const std::string& path, const std::string& text);
/** @} */

}  // namespace app
