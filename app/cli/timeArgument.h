// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include <CLI/CLI.hpp>

namespace app {

/** A time or a length in seconds: "90", "90.5", or in the clock format of the results, "1:30.50"
 *  and "1:02:03.5", where minutes and seconds after a colon are below 60. Nothing for any other
 *  text. */
std::optional<double> parseTime(const std::string& text);

/** For transform(): accepts such times from least to most seconds, both included, and converts them
 *  to plain seconds. */
CLI::Validator timeBetween(double least, double most);

}  // namespace app
