// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas {

/** A finalised dot. */
struct Dot {
    float level;              ///< the low band's sum; 1 where only the mid band has one; else 0
    std::int32_t levelClass;  ///< 1 silent, 2 faint … 15 loud
};

/** @param lowSum,midSum  peak levels of the dot's bands, 16-bit scale */
Dot makeDot(std::int32_t lowSum, std::int32_t midSum);

}  // namespace beatatlas
