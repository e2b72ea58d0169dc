// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** The 16-bit scale's answer to a sample of 1.0. */
inline constexpr float kFullScale = 32768.0F;

}  // namespace beatatlas
