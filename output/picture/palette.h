// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "output/picture/Color.h"

namespace output::palette {

constexpr Color kBackground = Color::rgb(0x0E1219);
constexpr Color kPanel = Color::rgb(0x161C27);
constexpr Color kText = Color::rgb(0xEEF2F8);
constexpr Color kMutedText = Color::rgb(0x8A95A8);
constexpr Color kBaseLine = Color::rgb(0x2A3342);
constexpr Color kDownbeat = Color::rgb(0xFFFFFF);
constexpr Color kBeat = Color::rgb(0xD5DCE8);
constexpr Color kHalo = Color::rgb(0x0E1219).withAlpha(0.55);
constexpr Color kDot = Color::rgb(0xFF8A4C);

/** A loudness colour: bass is warm, highs are cool, and what little bass there is makes it green or
 *  blue. */
struct LoudColor {
    Color color;
    const char* meaning;
};

// By colour number. 0 to 3 are stretches with bass: which band leads, and whether mids or highs
// come with it.
constexpr std::array<LoudColor, 6> kLoud = {{{Color::rgb(0xFF4D5E), "bass over mids"},
                                             {Color::rgb(0xFF9A3D), "mids over bass"},
                                             {Color::rgb(0xE65BC4), "bass over highs"},
                                             {Color::rgb(0x9B7BFF), "highs over bass"},
                                             {Color::rgb(0x3DD68C), "mids, little bass"},
                                             {Color::rgb(0x46B4FF), "highs, little bass"}}};

// By the share of bass in the peak: all of it (0) down to none (7).
constexpr std::array<Color, 8> kZoom = {
    {Color::rgb(0xFF4D5E), Color::rgb(0xFF7350), Color::rgb(0xFF9A3D), Color::rgb(0xF2C14E),
     Color::rgb(0xA8D05A), Color::rgb(0x3DD68C), Color::rgb(0x3CC6CF), Color::rgb(0x46B4FF)}};

}  // namespace output::palette
