// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace app {

/** What a misspelt word was probably meant to be: "; did you mean analyze?", or nothing when no
 *  name is similar.
 *
 *  A name is similar if the word is its beginning, or differs from it by one or two typing errors:
 *  a letter too many, one missing, a wrong one, two exchanged. Case is ignored. */
std::string suggestion(const std::string& word, const std::vector<std::string>& names);

}  // namespace app
