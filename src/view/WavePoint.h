// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas {

/** One point of the loudness or dots wave. */
struct WavePoint {
    /** In 16-bit sample scale. */
    float level;
    /** Colour 0..5. */
    std::int32_t color;
};

/** Points of the loudness wave: a whole track. */
inline constexpr int kLoudPoints = 400;

/** Points of the dots wave: a whole track. */
inline constexpr int kDots = 100;

}  // namespace beatatlas
