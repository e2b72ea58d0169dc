// SPDX-License-Identifier: MIT
#include "view/DetectorTiming.h"

#include <climits>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

using DetectorTimingTest = test::RoundTowardZero;

// 44100 × 0.32 = 14112, × 1.714 = 75587.4, / 44100 × 512 = 512.
TEST_F(DetectorTimingTest, KnowsTheTimesAt44100) {
    const DetectorTiming timing(44100, 1000);
    EXPECT_EQ(timing.blockLen, 588);
    EXPECT_EQ(timing.minInterval, 14112);
    EXPECT_EQ(timing.holdTime, 75587);
    EXPECT_EQ(timing.decayStep, 512);
}

// 48000 × 0.32 = 15360, / 44100 × 512 = 557.3. The double nearest 1.714 lies below it, so the
// product cut toward zero stays below 82272 and a count of 82272 is past the hold.
TEST_F(DetectorTimingTest, KnowsTheTimesAt48000) {
    const DetectorTiming timing(48000, 1000);
    EXPECT_EQ(timing.blockLen, 640);
    EXPECT_EQ(timing.minInterval, 15360);
    EXPECT_EQ(timing.holdTime, 82271);
    EXPECT_EQ(timing.decayStep, 557);
}

TEST_F(DetectorTimingTest, FindsTheTracksLastSampleInItsChunk) {
    const DetectorTiming timing(48000, 1000);
    EXPECT_EQ(timing.lastSampleInChunk(0), 999);
    EXPECT_EQ(timing.lastSampleInChunk(1), 359);
    EXPECT_EQ(timing.lastSampleInChunk(2), -281);
}

TEST_F(DetectorTimingTest, FindsTheLastSampleOfTheLongestTrack) {
    const DetectorTiming timing(48000, INT_MAX);
    EXPECT_EQ(timing.lastSampleInChunk(3355443), 126);  // 2147483646 - 3355443 × 640
    EXPECT_EQ(timing.lastSampleInChunk(4000000), -412516354);
}

}  // namespace
}  // namespace beatatlas
