// SPDX-License-Identifier: MIT
#include "track/evidence/LevelCode.h"

#include <cmath>

namespace beatatlas::track::inner {

std::vector<float> levelsOfCodes() {
    constexpr auto kOctave = static_cast<std::size_t>(kLevelCodesPerOctave);
    constexpr auto kLowest = static_cast<int>(kLowestLevelOctaves);
    std::vector<float> levels(kLevelCodes);
    for (std::size_t step = 0; step < kOctave; ++step) {
        const double level = std::exp2(static_cast<double>(step) / kLevelCodesPerOctave);
        for (std::size_t octave = 0; octave < kLevelCodes / kOctave; ++octave)
            levels[octave * kOctave + step] =
                static_cast<float>(std::ldexp(level, static_cast<int>(octave) - kLowest));
    }
    levels[0] = 0.0F;
    return levels;
}

}  // namespace beatatlas::track::inner
