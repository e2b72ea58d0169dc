// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace output {

/** A colour and its opacity, each 0 to 1. */
struct Color {
    double red;
    double green;
    double blue;
    double alpha = 1.0;

    /** From 0xRRGGBB. */
    static constexpr Color rgb(std::uint32_t hex) {
        return {((hex >> 16) & 0xFF) / 255.0, ((hex >> 8) & 0xFF) / 255.0, (hex & 0xFF) / 255.0};
    }

    constexpr Color withAlpha(double value) const { return {red, green, blue, value}; }
};

}  // namespace output
