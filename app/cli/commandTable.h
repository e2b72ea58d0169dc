// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "cli/Command.h"

namespace app {

/** All commands, in the order in which --help lists them. A new command is one more line here. */
std::vector<std::unique_ptr<Command>> makeCommands();

}  // namespace app
