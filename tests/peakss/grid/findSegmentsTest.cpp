// SPDX-License-Identifier: MIT
#include "peakss/grid/findSegments.h"

#include <limits>
#include <utility>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using beatatlas::test::intervalsOf;
using beatatlas::test::kRate;
using beatatlas::test::positionsOf;
using beatatlas::test::yieldCount;
using peakss::BeatList;
using Positions = std::vector<int>;

class FindSegmentsTest : public beatatlas::test::RoundTowardZero {
protected:
    // count beats of an interval in ms, where the list ends.
    void play(float interval, int count) {
        for (int i = 0; i < count; ++i) {
            const int group = static_cast<int>(raw_.size());
            raw_.push_back(beatAt(end_, interval, group));
            end_ += static_cast<int>(interval * 48.0F);
        }
    }

    BeatList raw_;
    int end_ = 0;
};

TEST_F(FindSegmentsTest, OneTempoIsOneSegment) {
    play(500.0F, 60);
    const BeatList segments = peakss::findSegments(raw_, kRate);
    EXPECT_EQ(positionsOf(segments), (Positions{0}));
    EXPECT_EQ(intervalsOf(segments), (std::vector<float>{500.0F}));
}

TEST_F(FindSegmentsTest, SegmentIsACopyOfItsBeatButForTheBand) {
    raw_.push_back(beatAt(1000, 500.0F, 3, 21, 5));
    raw_.back().phase = 1.25F;
    raw_.back().segHead = true;
    const BeatList segments = peakss::findSegments(raw_, kRate);
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments[0].group, (3 << 8) | 21);
    EXPECT_EQ(segments[0].phase, 1.25F);
    EXPECT_TRUE(segments[0].segHead);
    EXPECT_EQ(skippedBeats(segments[0]), 0);
}

// The window tells the new tempo some seconds ahead; the segment opens at the first beat of it all
// the same.
TEST_F(FindSegmentsTest, SegmentOpensAtTheFirstBeatOfTheNewTempo) {
    play(500.0F, 40);
    const int change = end_;
    play(400.0F, 40);
    const BeatList segments = peakss::findSegments(raw_, kRate);
    EXPECT_EQ(positionsOf(segments), (Positions{0, change}));
    EXPECT_EQ(intervalsOf(segments), (std::vector<float>{500.0F, 400.0F}));
}

TEST_F(FindSegmentsTest, DoubleTempoIsNoNewSegment) {
    play(500.0F, 40);
    play(250.0F, 60);
    EXPECT_EQ(positionsOf(peakss::findSegments(raw_, kRate)), (Positions{0}));
}

// A beat at half the new tempo stands before the first one of it: the segment opens there, with the
// interval of the first beat of the tempo itself.
TEST_F(FindSegmentsTest, SegmentOpensAtAnEarlierBeatOfTheDoubledInterval) {
    play(500.0F, 40);
    const int change = end_;
    play(800.0F, 1);
    play(400.0F, 40);
    const BeatList segments = peakss::findSegments(raw_, kRate);
    EXPECT_EQ(positionsOf(segments), (Positions{0, change}));
    EXPECT_EQ(intervalsOf(segments), (std::vector<float>{500.0F, 400.0F}));
}

TEST_F(FindSegmentsTest, SegmentOpensAtAnEarlierBeatOfTheHalvedInterval) {
    play(500.0F, 40);
    const int change = end_;
    play(200.0F, 1);
    play(400.0F, 40);
    EXPECT_EQ(positionsOf(peakss::findSegments(raw_, kRate)), (Positions{0, change}));
}

// 60000 / (16 + 400 + 0.5) = 144.06 and 60000 / (400 − 16 + 0.5) = 156.05: slots 144 to 155 are
// near 150 BPM, 144 and 155 BPM among them, 143 and 156 BPM not.
TEST_F(FindSegmentsTest, NearTempiReachFromTheToleranceBelowToTheOneAbove) {
    for (const auto& [bpm, isNear] : {std::pair{143.0F, false}, std::pair{144.0F, true},
                                      std::pair{155.0F, true}, std::pair{156.0F, false}}) {
        raw_.clear();
        end_ = 0;
        play(500.0F, 40);
        const int change = end_;
        play(60000.0F / bpm, 1);
        const int regular = end_;
        play(400.0F, 40);
        EXPECT_EQ(positionsOf(peakss::findSegments(raw_, kRate)),
                  (Positions{0, isNear ? change : regular}))
            << bpm;
    }
}

TEST_F(FindSegmentsTest, BeatsWithoutACountableTempoAreSkipped) {
    for (int i = 0; i < 20; ++i) raw_.push_back(beatAt(i * 48000, 0.0F));
    end_ = 20 * 48000;
    EXPECT_TRUE(peakss::findSegments(raw_, kRate).empty());
    play(500.0F, 20);
    EXPECT_EQ(positionsOf(peakss::findSegments(raw_, kRate)), (Positions{20 * 48000}));
    EXPECT_TRUE(peakss::findSegments({}, kRate).empty());
}

// Slot 0, slower than half a beat per minute, is an infinite interval, which no interval matches: a
// segment per window.
TEST_F(FindSegmentsTest, TempoBelowHalfABeatPerMinuteOpensASegmentEachTime) {
    play(200000.0F, 3);
    EXPECT_EQ(peakss::findSegments(raw_, kRate).size(), 3U);
}

TEST_F(FindSegmentsTest, PositionsAtTheEndsOfTheNumberRangeAreSafe) {
    raw_ = {beatAt(std::numeric_limits<int>::min()), beatAt(0),
            beatAt(std::numeric_limits<int>::max())};
    EXPECT_EQ(peakss::findSegments(raw_, std::numeric_limits<int>::max()).size(), 1U);
}

TEST_F(FindSegmentsTest, YieldsOncePerBeat) {
    play(500.0F, 30);
    const long before = yieldCount();
    peakss::findSegments(raw_, kRate);
    EXPECT_EQ(yieldCount() - before, 30);
}

}  // namespace
