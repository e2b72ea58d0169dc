// SPDX-License-Identifier: MIT
#include "peakss/grid/constantTempo.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatsOfIntervals;
using beatatlas::test::intervalsOf;
using beatatlas::test::yieldCount;
using peakss::BeatList;
using peakss::findTrackInterval;
using Intervals = std::vector<float>;

using FindTrackIntervalTest = beatatlas::test::RoundTowardZero;

// 127.98 BPM twice and 127.0 once: slot 1280 is 468.75 ms.
TEST_F(FindTrackIntervalTest, TrackIntervalIsTheCommonestToATenth) {
    EXPECT_EQ(findTrackInterval(beatsOfIntervals({468.82F, 468.82F, 472.44F, 300.0F}), 1000000),
              468.75F);
}

TEST_F(FindTrackIntervalTest, TrackIntervalCountsUpToTheLengthBehindTheFirstBeat) {
    const auto raw = beatsOfIntervals({500.0F, 600.0F, 600.0F});  // 24000 samples apart
    EXPECT_EQ(findTrackInterval(raw, 48000), 600.0F);
    EXPECT_EQ(findTrackInterval(raw, 24000), 600.0F);  // one of each: the lower tempo
    EXPECT_EQ(findTrackInterval(raw, 23999), 500.0F);
}

TEST_F(FindTrackIntervalTest, TrackWithoutACountableTempoHasNoInterval) {
    EXPECT_EQ(findTrackInterval({}, 1000), 0.0F);
    EXPECT_EQ(findTrackInterval(beatsOfIntervals({0.0F, 75.0F}), 1000000), 0.0F);
}

class DropOtherTempiTest : public beatatlas::test::RoundTowardZero {
protected:
    static Intervals keptOf(const Intervals& intervals, float track = 500.0F) {
        BeatList raw = beatsOfIntervals(intervals);
        peakss::dropOtherTempi(raw, track);
        return intervalsOf(raw);
    }
};

TEST_F(DropOtherTempiTest, KeepsTheTempoItsDoubleAndItsHalf) {
    EXPECT_EQ(keptOf({500.0F, 700.0F, 1000.0F, 250.0F, 750.0F}),
              (Intervals{500.0F, 1000.0F, 250.0F}));
}

// 700 is dropped, but stays the value the next beat is compared with; 720 matches it, 740 matches
// 720.
TEST_F(DropOtherTempiTest, KeepsBeatsThatMatchADroppedNeighbour) {
    EXPECT_EQ(keptOf({500.0F, 700.0F, 719.0F, 738.0F, 500.0F}),
              (Intervals{500.0F, 719.0F, 738.0F, 500.0F}));
}

// The tolerance of 500 ms is 20: an interval of 20 ms passes, but only as the first beat.
TEST_F(DropOtherTempiTest, WalkBeginsWithTheToleranceAsPreviousInterval) {
    EXPECT_EQ(keptOf({20.0F, 500.0F}), (Intervals{20.0F, 500.0F}));
    EXPECT_EQ(keptOf({500.0F, 20.0F}), (Intervals{500.0F}));
}

TEST_F(DropOtherTempiTest, AbsurdIntervalsGoAndEmptyListsStayEmpty) {
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    EXPECT_EQ(keptOf({0.0F, 0.0F, -500.0F, -500.0F, kNoNumber, kNoNumber, kInfinite, kInfinite}),
              Intervals{});
    EXPECT_EQ(keptOf({}), Intervals{});
    EXPECT_EQ(keptOf({500.0F}, kInfinite), Intervals{});
}

TEST_F(DropOtherTempiTest, YieldsOncePerBeat) {
    const long before = yieldCount();
    keptOf({500.0F, 700.0F, 1000.0F});
    EXPECT_EQ(yieldCount() - before, 3);
}

}  // namespace
