// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "manual/Outline.h"

namespace manual {

/** The remark at the head of what is made for a shell. */
constexpr const char* kMadeForShells = "# SPDX-License-Identifier: MIT\n"
                                       "# Made from the program's own options.\n";

/** A word that every shell takes as it stands: within single quotes. */
std::string quoted(const std::string& text);

std::string joined(const std::vector<std::string>& words, const std::string& between);

/** Endings without their dots of the files that may stand for a value; none: any file. */
std::vector<std::string> endingsOf(Value value);

}  // namespace manual
