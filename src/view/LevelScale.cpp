// SPDX-License-Identifier: MIT
#include "view/LevelScale.h"

#include <cstddef>

namespace beatatlas {

namespace {

constexpr std::array<float, 25> kThresholds = LevelScaleSet();
constexpr std::int32_t kLoudestClass = 25;
constexpr std::int32_t kQuietestClass = 2;

}  // namespace

std::int32_t levelClass(float level) {
    for (std::int32_t c = kLoudestClass; c > kQuietestClass; --c)
        if (level >= kThresholds[static_cast<std::size_t>(kLoudestClass - c)]) return c;
    return kQuietestClass;
}

}  // namespace beatatlas
