// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace manual {

/** @name Text in the language of manual pages, groff's and mandoc's man(7)
 *  @{ */

/** Text as it stands, broken into lines of 78 columns at most. Words that begin with a dash are
 *  options: their dashes stay what a shell takes. */
std::string roffText(const std::string& text);

/** What is typed as it stands: bold. */
std::string roffBold(const std::string& text);

/** What stands for something else: italic. */
std::string roffItalic(const std::string& text);
/** @} */

}  // namespace manual
