// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

namespace beatatlas {

/** The thresholds of the level classes, loudest first, in 16-bit scale. */
constexpr std::array<float, 25> LevelScaleSet() {
    return {
        50790.4F,   // 1.55 of full scale: class 25
        39321.6F,   // 1.2
        30801.92F,  // 0.94
        25886.72F,  // 0.79
        23265.28F,  // 0.71
        21299.2F,   // 0.65: class 20
        19333.12F,  // 0.59
        17367.04F,  // 0.53
        15892.48F,  // 0.485
        14909.44F,  // 0.455
        13926.4F,   // 0.425: class 15
        12943.36F,  // 0.395
        11960.32F,  // 0.365
        10977.28F,  // 0.335
        9994.24F,   // 0.305
        9011.2F,    // 0.275: class 10
        8028.16F,   // 0.245
        7045.12F,   // 0.215
        6062.08F,   // 0.185
        5079.04F,   // 0.155
        4096.0F,    // 0.125: class 5
        3112.96F,   // 0.095
        2195.456F,  // 0.067: class 3, the last one opened by a threshold
        1507.328F,  // 0.046
        917.504F,   // 0.028
    };
}

/** Class of a level: 25 from the first threshold upwards, 24 from the second … 3 from the twenty-third, else 2. */
std::int32_t levelClass(float level);

}  // namespace beatatlas
