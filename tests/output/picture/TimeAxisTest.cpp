// SPDX-License-Identifier: MIT
#include "output/picture/TimeAxis.h"

#include <gtest/gtest.h>

namespace output {
namespace {

constexpr Rect kArea{100.0, 0.0, 1000.0, 50.0};

TEST(TimeAxis, LaysTheStretchOverTheWidth) {
    const TimeAxis axis(10.0, 20.0, kArea);
    EXPECT_DOUBLE_EQ(axis.xOf(10.0), 100.0);
    EXPECT_DOUBLE_EQ(axis.xOf(15.0), 600.0);
    EXPECT_DOUBLE_EQ(axis.xOf(20.0), 1100.0);
    EXPECT_DOUBLE_EQ(axis.secondsAt(600.0), 15.0);
}

// 1000 units hold eleven labels of 84 units: the step is the least round one above an eleventh of
// the stretch or so.
TEST(TimeAxis, ChoosesRoundStepsThatLeaveRoomForTheLabels) {
    EXPECT_DOUBLE_EQ(TimeAxis(0.0, 10.0, kArea).labelStep(), 1.0);        // 0.84
    EXPECT_DOUBLE_EQ(TimeAxis(0.0, 240.0, kArea).labelStep(), 30.0);      // 20.2
    EXPECT_DOUBLE_EQ(TimeAxis(0.0, 36000.0, kArea).labelStep(), 3600.0);  // 3024
    EXPECT_DOUBLE_EQ(TimeAxis(0.0, 0.5, kArea).labelStep(), 0.05);        // 0.042
}

TEST(TimeAxis, GoesOnInWholeHoursForTheLongestTracks) {
    EXPECT_DOUBLE_EQ(TimeAxis(0.0, 100000.0, kArea).labelStep(), 10800.0);  // 8400, so three hours
}

}  // namespace
}  // namespace output
