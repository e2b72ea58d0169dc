// SPDX-License-Identifier: MIT
#include "output/picture/ZoomStretch.h"

#include <gtest/gtest.h>

#include "support/Reports.h"

namespace output {
namespace {

/** A minute of quiet with one loud stretch. */
beatatlas::track::TrackResult minuteLoudFrom(double seconds, double length) {
    beatatlas::track::TrackResult analysis;
    analysis.rate = 44100;
    analysis.frames = 44100 * 60;
    for (int i = 0; i < 150 * 60; ++i) {
        const double at = i / 150.0;
        analysis.zoomWave.push_back({at >= seconds && at < seconds + length ? 31.0F : 1.0F, 0});
    }
    return analysis;
}

TEST(ZoomStretch, FindsTheLoudestPlace) {
    const ZoomStretch stretch = chooseZoomStretch(minuteLoudFrom(30.0, 12.0), {});
    EXPECT_NEAR(stretch.from, 30.0, 0.01);
    EXPECT_NEAR(stretch.to, 42.0, 0.01);
}

TEST(ZoomStretch, BeginsShortlyBeforeTheDownbeatThatLeadsThere) {
    beatatlas::track::TrackResult analysis = minuteLoudFrom(30.0, 12.0);
    for (int i = 0; i < 120; ++i)
        analysis.beats.push_back({i * 0.5, 120.0, i * 22050, i % 4 + 1});  // bars of two seconds
    EXPECT_NEAR(chooseZoomStretch(analysis, {}).from, 29.9, 0.01);
    analysis.beats.erase(analysis.beats.begin() + 60);  // the downbeat at 30 s
    EXPECT_NEAR(chooseZoomStretch(analysis, {}).from, 27.9, 0.01);
}

TEST(ZoomStretch, IsTheOneAskedFor) {
    PictureOptions options;
    options.zoomFromSeconds = 5.0;
    options.zoomSpanSeconds = 3.0;
    const ZoomStretch stretch = chooseZoomStretch(minuteLoudFrom(30.0, 12.0), options);
    EXPECT_DOUBLE_EQ(stretch.from, 5.0);
    EXPECT_DOUBLE_EQ(stretch.to, 8.0);
}

TEST(ZoomStretch, IsMovedIntoTheTrack) {
    PictureOptions options;
    options.zoomFromSeconds = 1000.0;
    const ZoomStretch stretch = chooseZoomStretch(minuteLoudFrom(30.0, 12.0), options);
    EXPECT_DOUBLE_EQ(stretch.from, 48.0);
    EXPECT_DOUBLE_EQ(stretch.to, 60.0);
}

TEST(ZoomStretch, IsTheWholeOfAShortTrack) {
    const ZoomStretch stretch = chooseZoomStretch(test::exampleReport().analysis, {});
    EXPECT_DOUBLE_EQ(stretch.from, 0.0);
    EXPECT_DOUBLE_EQ(stretch.to, 8.0);
}

TEST(ZoomStretch, NeedsNoWave) {
    beatatlas::track::TrackResult analysis = minuteLoudFrom(30.0, 12.0);
    analysis.zoomWave.clear();
    EXPECT_DOUBLE_EQ(chooseZoomStretch(analysis, {}).from, 0.0);
}

}  // namespace
}  // namespace output
