// SPDX-License-Identifier: MIT
#include "cli/timeArgument.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include <fmt/format.h>

namespace app {

namespace {

constexpr double kPerStep = 60.0;
constexpr std::size_t kMostColons = 2;

bool isDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

/** Digits, if fractions are allowed also a point and more digits; nothing for signs, exponents and
 *  words. */
std::optional<double> plainNumber(std::string_view text, bool mayHaveFraction) {
    const bool isPlain = std::all_of(text.begin(), text.end(), [&](char c) {
        return isDigit(c) || (mayHaveFraction && c == '.');
    });
    double number = 0.0;
    if (!isPlain || !CLI::detail::lexical_cast(std::string(text), number)) return std::nullopt;
    return number;
}

/** The number after a colon. */
std::optional<double> sixtieths(std::string_view text, bool mayHaveFraction) {
    const std::size_t whole = std::min(text.find('.'), text.size());
    if (whole == 0 || whole > 2) return std::nullopt;
    const auto number = plainNumber(text, mayHaveFraction);
    return number && *number < kPerStep ? number : std::nullopt;
}

}  // namespace

std::optional<double> parseTime(const std::string& text) {
    std::string_view rest = text;
    std::optional<double> seconds;
    for (std::size_t colons = 0; colons <= kMostColons; ++colons) {
        const std::size_t colon = rest.find(':');
        const bool isLast = colon == std::string_view::npos;
        const std::string_view part = rest.substr(0, colon);
        const auto number = seconds ? sixtieths(part, isLast) : plainNumber(part, isLast);
        if (!number) return std::nullopt;
        seconds = seconds.value_or(0.0) * kPerStep + *number;
        if (isLast) return seconds;
        rest.remove_prefix(colon + 1);
    }
    return std::nullopt;
}

CLI::Validator timeBetween(double least, double most) {
    const auto toSeconds = [least, most](std::string& text) -> std::string {
        const auto seconds = parseTime(text);
        if (!seconds || *seconds < least || *seconds > most) {
            return fmt::format("takes a time from {} to {} s, as 90, 1:30 or 1:02:03.5, not {}",
                               least, most, text);
        }
        text = fmt::format("{}", *seconds);
        return {};
    };
    return {toSeconds, ""};
}

}  // namespace app
