// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "output/KeyName.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace app {

/** Declares --key-notation, which names keys in one notation only. */
CLI::Option* addKeyNotation(CLI::App& arguments, std::optional<output::KeyNotation>& notation);

/** All keys as they stand on the Camelot wheel, "1A" to "12B": the shortest names there are. */
std::vector<std::string> wheelKeys();

}  // namespace app
