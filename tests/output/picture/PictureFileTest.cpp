// SPDX-License-Identifier: MIT
#include "output/picture/PictureFile.h"

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "output/picture/PictureLayout.h"
#include "output/picture/Theme.h"
#include "support/Pixels.h"
#include "support/Reports.h"

namespace output {
namespace {

using test::drawPixels;
using test::hexOf;
using test::pictureBytes;
using test::Pixels;

using testing::HasSubstr;
using testing::StartsWith;

const Theme& kDark = theme(ThemeName::dark);

// Of a picture of the usual size, 1600 pixels, where a unit is a pixel.
const PictureLayout kLayout(1600);

PictureOptions optionsOf(int width, ThemeName theme) {
    PictureOptions options;
    options.widthPixels = width;
    options.theme = theme;
    return options;
}

/** The example with a zoom wave as loud as can be, in all colours. */
TrackReport loudReport() {
    TrackReport report = test::exampleReport();
    for (auto& point : report.analysis.zoomWave) point.level = 31.0F;
    return report;
}

/** How many of a row's pixels show the wave. */
int wavePixels(const Pixels& picture, const Theme& theme, const Rect& area, int y) {
    int count = 0;
    for (const Color& color : theme.scale)
        count += picture.count(hexOf(color), {area.x, static_cast<double>(y), area.width, 1.0});
    return count;
}

TEST(PictureFile, HasTheWidthAskedFor) {
    for (const int width : {480, 800, 1600, 3840}) {
        const Pixels picture = drawPixels(test::exampleReport(), optionsOf(width, ThemeName::dark));
        EXPECT_EQ(picture.width(), width);
        const PictureLayout layout(width);
        EXPECT_NEAR(picture.height(), layout.height * layout.scale, 0.5);
    }
}

TEST(PictureFile, ShowsTheLoudnessWaveInItsSixColours) {
    for (const ThemeName name : {ThemeName::dark, ThemeName::light}) {
        const Pixels picture = drawPixels(test::exampleReport(), optionsOf(1600, name));
        for (const LoudClass& loud : kLoudClasses) {
            const std::uint32_t color = hexOf(theme(name).scale[loud.step]);
            EXPECT_GT(picture.count(color, kLayout.overview), 1000) << loud.meaning;
            EXPECT_GT(picture.count(color, kLayout.legend), 60) << loud.meaning;
        }
    }
}

TEST(PictureFile, DrawsLouderPointsHigher) {
    const Pixels picture = drawPixels(test::exampleReport());
    const Rect& area = kLayout.overview;
    const Rect left{area.x, area.y, area.width / 2, area.height};
    const Rect right{area.x + area.width / 2, left.y, left.width, left.height};
    int quiet = 0;
    int loud = 0;
    for (const LoudClass& each : kLoudClasses) {
        quiet += picture.count(hexOf(kDark.scale[each.step]), left);
        loud += picture.count(hexOf(kDark.scale[each.step]), right);
    }
    EXPECT_NEAR(static_cast<double>(loud) / quiet, 1.516,
                0.08);  // (16000 / 8000) to the power of 0.6
}

// 452 units at 480 pixels would give each of the 400 points one: bars and gaps would run together.
TEST(PictureFile, KeepsTheBarsOfANarrowPictureApart) {
    const Pixels picture = drawPixels(test::exampleReport(), optionsOf(480, ThemeName::dark));
    const Rect area = PictureLayout(480).overview;
    const int y = static_cast<int>(area.y + 0.4 * area.height);
    int gaps = 0;
    for (int x = static_cast<int>(area.x); x < static_cast<int>(area.right()); ++x) {
        const std::uint32_t pixel = picture.at(x, y);
        const auto isOfBar = [&](const Color& color) { return pixel == hexOf(color); };
        gaps += std::none_of(kDark.scale.begin(), kDark.scale.end(), isOfBar);
    }
    EXPECT_GT(gaps, 120);
}

TEST(PictureFile, ShowsDotsInTheColourOfBassWhereThereIsBass) {
    TrackReport report = test::exampleReport();
    for (auto& dot : report.analysis.dotsWave) dot.level *= 2.0F;  // beyond the strongest class
    const Pixels picture = drawPixels(report);
    const Rect& area = kLayout.dots;
    const Rect left{area.x, area.y, area.width / 2 - 10, area.height};
    const Rect right{area.x + area.width / 2 + 10, left.y, left.width, left.height};
    EXPECT_EQ(picture.count(hexOf(kDark.ofZoom(0)), left), 0);
    EXPECT_GT(picture.count(hexOf(kDark.ofZoom(0)), right), 50 * 100);
}

TEST(PictureFile, TellsWhatTheDotsMean) {
    const Pixels picture = drawPixels(test::emptyReport());
    const Rect caption{kLayout.dots.x, kLayout.dots.y - 24.0, kLayout.dots.width, 22.0};
    EXPECT_GT(picture.count(hexOf(kDark.bass()), caption), 50);             // the strongest dot
    EXPECT_GT(picture.countOthers(hexOf(kDark.background), caption), 600);  // words
}

// The stretch is the whole of 8 s, 190 units a second. The beats of bars stand at 0.6 s, 2.6 s …
TEST(PictureFile, DrawsTheGridInFrontOfTheLoudestMusic) {
    for (const ThemeName name : {ThemeName::dark, ThemeName::light}) {
        const Theme& colors = theme(name);
        const Pixels picture = drawPixels(loudReport(), optionsOf(1600, name));
        const int y = static_cast<int>(kLayout.zoom.y + 0.6 * kLayout.zoom.height);
        for (const double downbeat : {0.6, 2.6, 4.6, 6.6}) {
            const int x = static_cast<int>(std::lround(40 + downbeat * 190)) - 1;
            EXPECT_EQ(picture.at(x - 1, y), hexOf(colors.halo)) << downbeat;
            EXPECT_EQ(picture.at(x, y), hexOf(colors.downbeat)) << downbeat;
            EXPECT_EQ(picture.at(x + 1, y), hexOf(colors.downbeat)) << downbeat;
            EXPECT_EQ(picture.at(x + 2, y), hexOf(colors.halo)) << downbeat;
        }
        const Rect beat{40 + 1.1 * 190 - 4, static_cast<double>(y), 8, 1};
        EXPECT_EQ(picture.count(hexOf(colors.beat), beat), 1);
        EXPECT_EQ(picture.count(hexOf(colors.halo), beat), 2);
    }
}

TEST(PictureFile, LeavesHeadroomAboveAndBelowTheLoudestMusic) {
    const Pixels picture = drawPixels(loudReport());
    const Rect& area = kLayout.zoom;
    for (const double y : {area.y + 30.0, area.bottom() - 10.0})
        EXPECT_EQ(wavePixels(picture, kDark, area, static_cast<int>(y)), 0) << y;
    EXPECT_GT(wavePixels(picture, kDark, area, static_cast<int>(area.y + 50.0)), 1300);
}

TEST(PictureFile, DrawsDownbeatsHigherThanOtherBeats) {
    const Pixels picture = drawPixels(loudReport());
    const int y = static_cast<int>(kLayout.zoom.y) + 3;
    EXPECT_EQ(picture.at(static_cast<int>(40 + 2.6 * 190), y), hexOf(kDark.downbeat));
    EXPECT_EQ(picture.at(static_cast<int>(40 + 3.1 * 190), y), hexOf(kDark.panel));
}

TEST(PictureFile, NeverHidesTheWaveBehindTheGrid) {
    TrackReport report = loudReport();
    report.analysis.frames = 48000LL * 600;
    report.analysis.zoomWave.assign(150 * 600, {31.0F, 3});
    report.analysis.beats.clear();
    for (int i = 0; i < 1200; ++i)
        report.analysis.beats.push_back({i * 0.5, 120.0, i * 24000, i % 4 + 1});
    for (const double span : {12.0, 60.0, 600.0}) {
        PictureOptions options = optionsOf(480, ThemeName::dark);
        options.zoomSpanSeconds = span;
        const Rect area = PictureLayout(480).zoom;
        const int y = static_cast<int>(area.y + 0.6 * area.height);
        const Pixels picture = drawPixels(report, options);
        EXPECT_GT(wavePixels(picture, kDark, area, y), 0.7 * area.width) << span;
        EXPECT_LT(wavePixels(picture, kDark, area, y), 0.97 * area.width) << span;
    }
}

TEST(PictureFile, MarksTheZoomedStretchUnlessItIsTheWholeTrack) {
    PictureOptions options;
    const int y = static_cast<int>(kLayout.overview.y) + 4;  // above the wave
    const auto isMarked = [&](const Pixels& picture, int x) {
        return picture.at(x, y) != hexOf(kDark.panel);
    };
    EXPECT_FALSE(isMarked(drawPixels(test::exampleReport(), options), 40 + 3 * 190));
    options.zoomFromSeconds = 2.0;
    options.zoomSpanSeconds = 2.0;
    const Pixels picture = drawPixels(test::exampleReport(), options);
    EXPECT_FALSE(isMarked(picture, 40 + 190));
    EXPECT_TRUE(isMarked(picture, 40 + 3 * 190));
    EXPECT_FALSE(isMarked(picture, 40 + 5 * 190));
}

TEST(PictureFile, DrawsNoGridBeforeThereIsOne) {
    TrackReport report = test::exampleReport();
    report.analysis.beats.clear();
    const Pixels picture = drawPixels(report);
    EXPECT_EQ(picture.count(hexOf(kDark.downbeat), kLayout.zoom), 0);
}

TEST(PictureFile, DrawsATrackInWhichNothingWasFound) {
    EXPECT_EQ(drawPixels(test::emptyReport()).width(), 1600);
}

TEST(PictureFile, DrawsATrackOfOneFrame) {
    TrackReport report = test::emptyReport();
    report.analysis.frames = 1;
    report.analysis.zoomWave = {{31.0F, 7}};
    EXPECT_EQ(drawPixels(report).width(), 1600);
}

TEST(PictureFile, ClampsLevelsAndColoursFromOutside) {
    TrackReport report = test::exampleReport();
    report.analysis.loudWave[0] = {1e30F, 77};
    report.analysis.zoomWave[0] = {1.0F, -5};
    report.analysis.beats[0].frame = -1000;
    EXPECT_EQ(drawPixels(report).width(), 1600);
}

TEST(PictureFile, TakesAnyNameAsTitle) {
    TrackReport report = test::exampleReport();
    for (const std::string& name :
         {std::string(300, 'W'), std::string("\xFF\xFE"), std::string("a\nb"), std::string()}) {
        report.path = name;
        EXPECT_EQ(drawPixels(report).width(), 1600);
    }
}

TEST(PictureFile, WritesScalableGraphics) {
    const std::string text = pictureBytes(test::exampleReport(), {}, PictureFormat::svg);
    EXPECT_THAT(text, StartsWith("<?xml"));
    EXPECT_THAT(text, HasSubstr("width=\"1600px\""));
    EXPECT_THAT(text.substr(text.size() - 8), HasSubstr("</svg>"));
}

TEST(PictureFile, GivesTheSamePictureAgain) {
    const TrackReport report = test::exampleReport();
    EXPECT_EQ(pictureBytes(report, {}, PictureFormat::png),
              pictureBytes(report, {}, PictureFormat::png));
}

TEST(PictureFile, LetsThroughWhatTheSinkThrows) {
    const ByteSink full = [](const void*, std::size_t) { throw base::OutputError("full"); };
    for (const PictureFormat format : {PictureFormat::png, PictureFormat::svg})
        EXPECT_THROW(writePicture(test::exampleReport(), {}, format, full), base::OutputError);
}

}  // namespace
}  // namespace output
