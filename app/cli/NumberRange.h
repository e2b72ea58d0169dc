// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace app {

/** From lowest to highest, both included. */
struct NumberRange {
    double lowest = 0.0;
    double highest = 0.0;

    /** "120:128"; "128" is a range of one number. Nothing unless both ends are numbers from least
     *  to most, the lower one first. */
    static std::optional<NumberRange> parse(const std::string& text, double least, double most);
};

}  // namespace app
