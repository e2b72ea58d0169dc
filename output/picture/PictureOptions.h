// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

namespace output {

constexpr double kLatestZoomSeconds = 1e6;
constexpr double kShortestZoomSeconds = 0.5;
constexpr double kLongestZoomSeconds = 600.0;
constexpr int kNarrowestPicture = 480;
constexpr int kWidestPicture = 8000;

enum class ThemeName { dark, light };

/** What a picture shows and how large it is. */
struct PictureOptions {
    /** Nothing: the loudest section. */
    std::optional<double> zoomFromSeconds;
    double zoomSpanSeconds = 12.0;
    int widthPixels = 1600;
    ThemeName theme = ThemeName::dark;
};

enum class PictureFormat { png, svg };

}  // namespace output
