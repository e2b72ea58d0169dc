// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas {

/** One point of the loudness or dots wave. */
struct WavePoint {
    float level;         ///< 16-bit sample scale
    std::int32_t color;  ///< 0..5
};

}  // namespace beatatlas
