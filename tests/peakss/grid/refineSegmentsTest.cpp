// SPDX-License-Identifier: MIT
#include "peakss/grid/refineSegments.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using beatatlas::test::intervalsOf;
using beatatlas::test::positionsOf;
using beatatlas::test::segmentAt;
using beatatlas::test::yieldCount;
using peakss::BeatList;
using Positions = std::vector<int>;
using Intervals = std::vector<float>;

// Of 127.98 BPM: coarse slot 128, fine slot 1280, which stands for 468.75 ms exactly.
constexpr float kNear128Bpm = 468.82F;

class RefineSegmentsTest : public beatatlas::test::RoundTowardZero {
protected:
    void play(float interval, int count) {
        for (int i = 0; i < count; ++i) {
            raw_.push_back(beatAt(end_, interval));
            end_ += 24000;
        }
    }
    BeatList refined(BeatList segments) {
        peakss::refineSegments(segments, raw_, end_);
        return segments;
    }

    BeatList raw_;
    int end_ = 0;
};

TEST_F(RefineSegmentsTest, SegmentTakesTheCommonestTempoToATenth) {
    play(kNear128Bpm, 10);
    play(600.0F, 3);
    BeatList segments{segmentAt(0, 500.0F)};
    segments[0].phase = 3.0F;
    peakss::setAnchorSpacing(segments[0], 777);
    segments = refined(segments);
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments[0].interval, 468.75F);
    EXPECT_EQ(segments[0].phase, 0.0F);
    EXPECT_EQ(anchorSpacing(segments[0]), 4);
}

// The first segment reaches up to the second's start, that beat included: three of 100 BPM against
// two of 128 and one of 120.
TEST_F(RefineSegmentsTest, SegmentIsMeasuredUpToTheNext) {
    play(600.0F, 3);
    play(468.75F, 2);
    const int second = end_;
    play(500.0F, 5);
    const BeatList segments = refined({segmentAt(0), segmentAt(second)});
    EXPECT_EQ(positionsOf(segments), (Positions{0, second}));
    EXPECT_EQ(intervalsOf(segments), (Intervals{600.0F, 500.0F}));
}

// Five beats of 128 BPM lie within the track, but the span counts its whole length from the
// segment's start on.
TEST_F(RefineSegmentsTest, LastSegmentIsCountedPastTheEndOfTheTrack) {
    play(600.0F, 20);
    const int last = end_;
    play(468.75F, 5);
    const int length = end_;
    play(500.0F, 10);
    BeatList segments{segmentAt(0), segmentAt(last)};
    peakss::refineSegments(segments, raw_, length);
    EXPECT_EQ(intervalsOf(segments), (Intervals{600.0F, 500.0F}));
}

// Alone they tell 600 and 606.06 ms, which match. Joined, 99 BPM has four beats against three of
// 100.
TEST_F(RefineSegmentsTest, MatchingNeighboursJoinAndAreMeasuredAgain) {
    play(600.0F, 3);
    const int second = end_;
    play(606.0606F, 4);
    const BeatList segments = refined({segmentAt(0), segmentAt(second)});
    ASSERT_EQ(positionsOf(segments), (Positions{0}));
    EXPECT_FLOAT_EQ(segments[0].interval, 606.0606F);
}

// The second segment alone tells 500 ms and the third 510, which match. Joined they hold three
// beats of either, but four of 600, the tempo of the first.
TEST_F(RefineSegmentsTest, JoinedSegmentMayMatchTheOneBefore) {
    play(600.0F, 6);
    const int second = end_;
    play(500.0F, 3);
    play(600.0F, 2);
    const int third = end_;
    play(510.0F, 3);
    play(600.0F, 2);
    const BeatList segments = refined({segmentAt(0), segmentAt(second), segmentAt(third)});
    EXPECT_EQ(positionsOf(segments), (Positions{0}));
    EXPECT_EQ(intervalsOf(segments), (Intervals{600.0F}));
}

TEST_F(RefineSegmentsTest, SegmentWithoutACountableTempoStaysAsItIs) {
    play(75.0F, 5);
    const BeatList segments = refined({segmentAt(0, 333.0F)});
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments[0].interval, 333.0F);
}

TEST_F(RefineSegmentsTest, SegmentAwayFromAnyBeatStaysAsItIs) {
    play(500.0F, 5);
    EXPECT_EQ(intervalsOf(refined({segmentAt(7, 333.0F)})), (Intervals{333.0F}));
    EXPECT_TRUE(refined({}).empty());
}

TEST_F(RefineSegmentsTest, TwoSegmentsAtOnePositionJoin) {
    play(500.0F, 5);
    raw_[1].pos = 0;
    EXPECT_EQ(positionsOf(refined({segmentAt(0), segmentAt(0)})), (Positions{0}));
}

TEST_F(RefineSegmentsTest, SpanAcrossTheWholeNumberRangeIsSafe) {
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    raw_ = {beatAt(kLowest, 500.0F), beatAt(kHighest, 400.0F)};
    BeatList segments{segmentAt(kLowest), segmentAt(kHighest)};
    peakss::refineSegments(segments, raw_, kHighest);
    EXPECT_EQ(intervalsOf(segments), (Intervals{500.0F, 400.0F}));
}

TEST_F(RefineSegmentsTest, YieldsOncePerMeasurement) {
    play(500.0F, 6);
    const long before = yieldCount();
    refined({segmentAt(0), segmentAt(72000)});  // the first, the second, and the first again
    EXPECT_EQ(yieldCount() - before, 3);
}

}  // namespace
