// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas::test {

/** White noise of a fixed generator (xorshift32), in [-1, 1), the same on every machine. */
inline std::vector<float> whiteNoise(std::size_t count, std::uint32_t seed) {
    std::vector<float> noise(count);
    for (float& sample : noise) {
        seed ^= seed << 13;
        seed ^= seed >> 17;
        seed ^= seed << 5;
        // 24 bits fit a float exactly, so the rounding mode has no say.
        sample = static_cast<float>(static_cast<std::int32_t>(seed >> 8) - 0x800000) / 8388608.0F;
    }
    return noise;
}

}  // namespace beatatlas::test
