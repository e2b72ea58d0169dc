// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "output/KeyName.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace app {

/** Declares --key-notation, which names keys in one notation only. */
CLI::Option* addKeyNotation(CLI::App& arguments, std::optional<output::KeyNotation>& notation);

}  // namespace app
