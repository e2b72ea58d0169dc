// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include <CLI/CLI.hpp>

namespace app {

/** Seconds, as people write a place or a length: "90", "90.5", or by the clock as in results,
 *  "1:30.50" and "1:02:03.5", where minutes and seconds behind a colon are below 60. Nothing for
 *  any other text. */
std::optional<double> parseTime(const std::string& text);

/** For transform(): accepts such times from least to most seconds, both included, and makes plain
 *  seconds of them. */
CLI::Validator timeBetween(double least, double most);

}  // namespace app
