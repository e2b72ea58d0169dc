// SPDX-License-Identifier: MIT
#include "peakss/grid/representativeTempo.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "peakss/grid/representativeInterval.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatsOfIntervals;
using beatatlas::test::segmentAt;
using peakss::representativeInterval;
using peakss::representativeTempo;

class RepresentativeTempoTest : public beatatlas::test::RoundTowardZero {};

TEST_F(RepresentativeTempoTest, LongestSegmentTellsTheTempo) {
    EXPECT_EQ(representativeTempo({segmentAt(0, 500.0F), segmentAt(400, 600.0F)}, 1000), 100.0F);
    EXPECT_EQ(representativeTempo({segmentAt(0, 500.0F), segmentAt(600, 600.0F)}, 1000), 120.0F);
}

TEST_F(RepresentativeTempoTest, EarlierOfEquallyLongSegmentsWins) {
    EXPECT_EQ(representativeTempo({segmentAt(0, 500.0F), segmentAt(500, 600.0F)}, 1000), 120.0F);
}

// From 450 on the first would be the shorter one.
TEST_F(RepresentativeTempoTest, FirstSegmentCountsFromTheStartOfTheTrack) {
    EXPECT_EQ(representativeTempo({segmentAt(450, 500.0F), segmentAt(600, 600.0F)}, 1000), 120.0F);
}

TEST_F(RepresentativeTempoTest, NoSegmentHasNoTempo) {
    EXPECT_EQ(representativeTempo({}, 1000), 0.0F);
}

TEST_F(RepresentativeTempoTest, SpansBelowZeroAndAcrossTheNumberRangeAreSafe) {
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    EXPECT_EQ(representativeTempo({segmentAt(0, 500.0F)}, -5), 120.0F);
    EXPECT_EQ(representativeTempo({segmentAt(0, 500.0F), segmentAt(kLowest, 600.0F)}, kHighest),
              100.0F);
}

// 127.98 BPM twice and 127.0 once: slot 1280 is 468.75 ms.
TEST_F(RepresentativeTempoTest, TrackIntervalIsTheCommonestToATenth) {
    EXPECT_EQ(
        representativeInterval(beatsOfIntervals({468.82F, 468.82F, 472.44F, 300.0F}), 1000000),
        468.75F);
}

TEST_F(RepresentativeTempoTest, TrackIntervalCountsUpToTheLengthBehindTheFirstBeat) {
    const auto raw = beatsOfIntervals({500.0F, 600.0F, 600.0F});  // 24000 samples apart
    EXPECT_EQ(representativeInterval(raw, 48000), 600.0F);
    EXPECT_EQ(representativeInterval(raw, 24000), 600.0F);  // one of each: the lower tempo
    EXPECT_EQ(representativeInterval(raw, 23999), 500.0F);
}

TEST_F(RepresentativeTempoTest, TrackWithoutACountableTempoHasNoInterval) {
    EXPECT_EQ(representativeInterval({}, 1000), 0.0F);
    EXPECT_EQ(representativeInterval(beatsOfIntervals({0.0F, 75.0F}), 1000000), 0.0F);
}

}  // namespace
