// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace app {

/** Accepts numbers from least to most, both included; refuses text, infinities and NaN. */
inline CLI::Validator numberBetween(double least, double most) {
    const auto refusal = [least, most](const std::string& text) -> std::string {
        double number = 0.0;
        const bool isNumber = CLI::detail::lexical_cast(text, number);
        if (isNumber && number >= least && number <= most) return {};
        return fmt::format("takes a number from {} to {}, not {}", least, most, text);
    };
    return {refusal, ""};
}

/** The same for whole numbers. */
inline CLI::Validator wholeNumberBetween(int least, int most) {
    const auto refusal = [least, most](const std::string& text) -> std::string {
        int number = 0;
        const bool isNumber = CLI::detail::lexical_cast(text, number);
        if (isNumber && number >= least && number <= most) return {};
        return fmt::format("takes a whole number from {} to {}, not {}", least, most, text);
    };
    return {refusal, ""};
}

}  // namespace app
