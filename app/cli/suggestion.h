// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace app {

/** What a misspelt word was meant for: "; did you mean analyze?", or nothing where no name is near.
 *
 *  Near is a name of which the word is the beginning, and one that a slip or two of the fingers
 *  makes the word: a letter too many, one missing, a wrong one, two exchanged; capitals aside. */
std::string suggestion(const std::string& word, const std::vector<std::string>& names);

}  // namespace app
