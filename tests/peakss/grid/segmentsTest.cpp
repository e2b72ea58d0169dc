// SPDX-License-Identifier: MIT
#include "peakss/grid/segments.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::segmentAt;
using peakss::findMainTempo;

class MainTempoTest : public beatatlas::test::RoundTowardZero {};

TEST_F(MainTempoTest, LongestSegmentHasTheTempo) {
    EXPECT_EQ(findMainTempo({segmentAt(0, 500.0F), segmentAt(400, 600.0F)}, 1000), 100.0F);
    EXPECT_EQ(findMainTempo({segmentAt(0, 500.0F), segmentAt(600, 600.0F)}, 1000), 120.0F);
}

TEST_F(MainTempoTest, EarlierOfEquallyLongSegmentsWins) {
    EXPECT_EQ(findMainTempo({segmentAt(0, 500.0F), segmentAt(500, 600.0F)}, 1000), 120.0F);
}

// From 450 on the first would be the shorter one.
TEST_F(MainTempoTest, FirstSegmentCountsFromTheStartOfTheTrack) {
    EXPECT_EQ(findMainTempo({segmentAt(450, 500.0F), segmentAt(600, 600.0F)}, 1000), 120.0F);
}

TEST_F(MainTempoTest, NoSegmentHasNoTempo) {
    EXPECT_EQ(findMainTempo({}, 1000), 0.0F);
}

TEST_F(MainTempoTest, SpansBelowZeroAndAcrossTheNumberRangeAreSafe) {
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    EXPECT_EQ(findMainTempo({segmentAt(0, 500.0F)}, -5), 120.0F);
    EXPECT_EQ(findMainTempo({segmentAt(0, 500.0F), segmentAt(kLowest, 600.0F)}, kHighest), 100.0F);
}

}  // namespace
