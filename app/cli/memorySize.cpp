// SPDX-License-Identifier: MIT
#include "cli/memorySize.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string_view>

#include <CLI/CLI.hpp>

namespace app {

namespace {

constexpr std::string_view kPrefixes = "kmgt";
constexpr double kMostBytes = 4.0e18;

/** Bytes of a unit in lower case: "", "b", "g", "gib", "gb". */
std::optional<double> unitBytes(std::string_view unit) {
    if (unit.empty() || unit == "b") return 1.0;
    const std::size_t power = kPrefixes.find(unit.front());
    if (power == std::string_view::npos) return std::nullopt;
    const std::string_view rest = unit.substr(1);
    if (!rest.empty() && rest != "ib" && rest != "b") return std::nullopt;
    return std::pow(rest == "b" ? 1000.0 : 1024.0, static_cast<double>(power + 1));
}

}  // namespace

std::optional<std::int64_t> parseMemorySize(const std::string& text) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789."), text.size());
    double number = 0.0;
    if (!CLI::detail::lexical_cast(text.substr(0, digits), number)) return std::nullopt;
    std::string unit = text.substr(digits);
    for (char& letter : unit)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    const auto factor = unitBytes(unit);
    if (!factor) return std::nullopt;
    const double bytes = number * *factor;
    if (!(bytes >= 1.0 && bytes <= kMostBytes)) return std::nullopt;
    return static_cast<std::int64_t>(bytes);
}

std::string requireMemorySize(const std::string& text) {
    if (parseMemorySize(text)) return {};
    return "takes a size such as 512M, 1.5G or 2GiB, not " + text;
}

}  // namespace app
