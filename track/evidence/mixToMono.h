// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "track/Listener.h"

namespace beatatlas::track::inner {

/** The mean of both channels, full scale ±1.0. The caller sets rounding to nearest. */
inline void mixToMono(const Block& block, std::vector<float>& mono) {
    // Half the factor from 16-bit full scale to ±1.0: a power of two, so the product is exact.
    constexpr float kScale = 1.0F / 65536.0F;
    mono.resize(static_cast<std::size_t>(block.frames));
    for (std::size_t i = 0; i < mono.size(); ++i)
        mono[i] = (block.left[i] + block.right[i]) * kScale;
}

}  // namespace beatatlas::track::inner
