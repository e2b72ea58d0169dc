// SPDX-License-Identifier: MIT
#include "output/picture/Theme.h"

#include <algorithm>

namespace output {

namespace {

constexpr Theme kDark{.background = Color::rgb(0x0E1219),
                      .panel = Color::rgb(0x161C27),
                      .lane = Color::rgb(0x242D3C),
                      .text = Color::rgb(0xEEF2F8),
                      .mutedText = Color::rgb(0x9AA5B8),
                      .silence = Color::rgb(0x39455A),
                      .mark = Color::rgb(0xEEF2F8),
                      .downbeat = Color::rgb(0xFFFFFF),
                      .beat = Color::rgb(0xD5DCE8),
                      .halo = Color::rgb(0x161C27),
                      .scale = {{Color::rgb(0xFF4D5E), Color::rgb(0xFF7350), Color::rgb(0xFF9A3D),
                                 Color::rgb(0xF2C14E), Color::rgb(0xA8D05A), Color::rgb(0x3DD68C),
                                 Color::rgb(0x3CC6CF), Color::rgb(0x46A8FF)}}};

// The same hues, dark enough for contrast with white.
constexpr Theme kLight{.background = Color::rgb(0xF3F5F8),
                       .panel = Color::rgb(0xFFFFFF),
                       .lane = Color::rgb(0xE3E8EF),
                       .text = Color::rgb(0x18202C),
                       .mutedText = Color::rgb(0x525D70),
                       .silence = Color::rgb(0xB4BDCA),
                       .mark = Color::rgb(0x18202C),
                       .downbeat = Color::rgb(0x0B0F16),
                       .beat = Color::rgb(0x38424F),
                       .halo = Color::rgb(0xFFFFFF),
                       .scale = {{Color::rgb(0xE0243F), Color::rgb(0xE5491B), Color::rgb(0xDB7100),
                                  Color::rgb(0xB58A00), Color::rgb(0x6B9A12), Color::rgb(0x12A05C),
                                  Color::rgb(0x0A94A4), Color::rgb(0x1F74E0)}}};

}  // namespace

const Color& Theme::ofZoom(int color) const {
    return scale[static_cast<std::size_t>(
        std::clamp(color, 0, static_cast<int>(scale.size()) - 1))];
}

const Color& Theme::ofLoudness(int color) const {
    const int known = std::clamp(color, 0, static_cast<int>(kLoudClasses.size()) - 1);
    const auto* loud = std::find_if(kLoudClasses.begin(), kLoudClasses.end(),
                                    [&](const LoudClass& each) { return each.color == known; });
    return scale[loud->step];
}

const Theme& theme(ThemeName name) {
    return name == ThemeName::light ? kLight : kDark;
}

}  // namespace output
