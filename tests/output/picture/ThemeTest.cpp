// SPDX-License-Identifier: MIT
#include "output/picture/Theme.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

namespace output {
namespace {

/** Relative luminance and contrast as the Web Content Accessibility Guidelines define them. */
double luminance(const Color& color) {
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(const Color& one, const Color& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

/** Degrees from red through yellow, green and cyan to blue; reds on blue's side are negative. */
double hue(const Color& color) {
    const double most = std::max({color.red, color.green, color.blue});
    const double range = most - std::min({color.red, color.green, color.blue});
    if (most == color.green) return 60.0 * (2.0 + (color.blue - color.red) / range);
    if (most == color.blue) return 60.0 * (4.0 + (color.red - color.green) / range);
    return 60.0 * (color.green - color.blue) / range;
}

class ThemeTest : public testing::TestWithParam<ThemeName> {
protected:
    const Theme& theme_ = theme(GetParam());
};

// 4.5 is what the guidelines ask of small text (AA), 3 of graphics.
TEST_P(ThemeTest, HasWordsThatStandOutFromTheirGround) {
    for (const Color& ground : {theme_.background, theme_.panel}) {
        EXPECT_GE(contrast(theme_.text, ground), 4.5);
        EXPECT_GE(contrast(theme_.mutedText, ground), 4.5);
    }
    EXPECT_GE(contrast(theme_.text, theme_.lane), 4.5);
}

TEST_P(ThemeTest, HasWavesAndLinesThatStandOutFromThePanel) {
    for (const Color& color : theme_.scale) EXPECT_GE(contrast(color, theme_.panel), 3.0);
    EXPECT_GE(contrast(theme_.beat, theme_.halo), 7.0);
    EXPECT_GE(contrast(theme_.downbeat, theme_.halo), 7.0);
}

TEST_P(ThemeTest, GoesFromWarmBassToCoolTreble) {
    EXPECT_TRUE(std::is_sorted(theme_.scale.begin(), theme_.scale.end(),
                               [](const Color& a, const Color& b) { return hue(a) < hue(b); }));
    EXPECT_LT(hue(theme_.bass()), 20.0);         // red
    EXPECT_GT(hue(theme_.scale.back()), 200.0);  // blue
}

// The same sound has the same hue in both themes, give or take what the eye does not call another
// colour.
TEST_P(ThemeTest, SpeaksInTheHuesOfTheOtherTheme) {
    for (std::size_t i = 0; i < theme_.scale.size(); ++i)
        EXPECT_NEAR(hue(theme_.scale[i]), hue(theme(ThemeName::dark).scale[i]), 8.0) << i;
}

TEST_P(ThemeTest, PutsTheLoudnessClassesOnTheScaleOfTheZoomWave) {
    std::size_t last = 0;
    for (const LoudClass& loud : kLoudClasses) {
        EXPECT_EQ(&theme_.ofLoudness(loud.color), &theme_.scale[loud.step]) << loud.meaning;
        EXPECT_TRUE(loud.step == 0 || loud.step > last) << loud.meaning;
        last = loud.step;
    }
    EXPECT_EQ(&theme_.ofLoudness(0), &theme_.ofZoom(0));  // bass leads
    EXPECT_EQ(&theme_.ofLoudness(5), &theme_.ofZoom(7));  // highs without bass
}

TEST_P(ThemeTest, TakesNumbersFromOutsideForTheNearest) {
    EXPECT_EQ(&theme_.ofZoom(-5), &theme_.ofZoom(0));
    EXPECT_EQ(&theme_.ofZoom(77), &theme_.ofZoom(7));
    EXPECT_EQ(&theme_.ofLoudness(-5), &theme_.ofLoudness(0));
    EXPECT_EQ(&theme_.ofLoudness(77), &theme_.ofLoudness(5));
}

INSTANTIATE_TEST_SUITE_P(Both, ThemeTest, testing::Values(ThemeName::dark, ThemeName::light),
                         [](const auto& tested) {
                             return tested.param == ThemeName::dark ? "Dark" : "Light";
                         });

}  // namespace
}  // namespace output
