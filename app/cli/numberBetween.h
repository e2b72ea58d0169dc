// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/offeredWords.h"

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

/** The same for whole numbers; a few of them are offered to choose from. */
inline CLI::Validator wholeNumberBetween(int least, int most) {
    const auto refusal = [least, most](const std::string& text) -> std::string {
        int number = 0;
        const bool isNumber = CLI::detail::lexical_cast(text, number);
        if (isNumber && number >= least && number <= most) return {};
        return fmt::format("takes a whole number from {} to {}, not {}", least, most, text);
    };
    constexpr int kMostToChooseFrom = 10;
    std::vector<std::string> few;
    for (int number = least; number <= most && most - least < kMostToChooseFrom; ++number)
        few.push_back(std::to_string(number));
    return offering({refusal, ""}, few);
}

}  // namespace app
