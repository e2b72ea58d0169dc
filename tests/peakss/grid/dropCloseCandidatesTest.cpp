// SPDX-License-Identifier: MIT
#include "peakss/grid/dropCloseCandidates.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using beatatlas::test::kRate;
using beatatlas::test::positionsOf;
using beatatlas::test::segmentAt;
using beatatlas::test::yieldCount;
using peakss::BeatInfo;
using peakss::BeatList;
using Positions = std::vector<int>;

constexpr int kLength = 1000000;

// An eighth of 500 ms is 3000 samples.
class DropCloseCandidatesTest : public beatatlas::test::RoundTowardZero {
protected:
    static Positions keptOf(BeatList raw, const BeatList& segments = {segmentAt(0)},
                            int length = kLength) {
        peakss::dropCloseCandidates(raw, segments, length, kRate);
        return positionsOf(raw);
    }
    static BeatInfo weighing(int pos, int weight, int group) {
        return beatAt(pos, 500.0F, group, weight);
    }
};

TEST_F(DropCloseCandidatesTest, CandidateOfTheLighterGroupGoes) {
    EXPECT_EQ(keptOf({weighing(1000, 5, 0), weighing(2000, 9, 1)}), (Positions{2000}));
    EXPECT_EQ(keptOf({weighing(1000, 9, 0), weighing(2000, 5, 1)}), (Positions{1000}));
}

TEST_F(DropCloseCandidatesTest, LaterOfEquallyHeavyCandidatesGoes) {
    EXPECT_EQ(keptOf({weighing(1000, 5, 0), weighing(2000, 5, 1)}), (Positions{1000}));
}

TEST_F(DropCloseCandidatesTest, AnEighthOfABeatApartIsFarEnough) {
    EXPECT_EQ(keptOf({weighing(1000, 5, 0), weighing(3999, 5, 1)}), (Positions{1000}));
    EXPECT_EQ(keptOf({weighing(1000, 5, 0), weighing(4000, 5, 1)}), (Positions{1000, 4000}));
}

// The first beat of group 1 weighs 9; the one in question weighs 1 itself.
TEST_F(DropCloseCandidatesTest, GroupWeighsWhatItsFirstBeatWeighs) {
    EXPECT_EQ(keptOf({weighing(0, 9, 1), weighing(10000, 5, 0), weighing(11000, 1, 1)}),
              (Positions{0, 11000}));
}

// 1000 and 3000 and 5000 are each too close to the next. The last kept one counts: 3000 yields to
// 1000, and 5000 is far enough from that.
TEST_F(DropCloseCandidatesTest, ComparesWithTheLastKeptCandidate) {
    EXPECT_EQ(keptOf({weighing(1000, 5, 0), weighing(3000, 5, 1), weighing(5000, 5, 2)}),
              (Positions{1000, 5000}));
    EXPECT_EQ(keptOf({weighing(1000, 5, 0), weighing(3000, 6, 1), weighing(5000, 5, 2)}),
              (Positions{3000}));
}

// 2000 samples: more than an eighth of 250 ms (1500), less than one of 500 ms (3000). The beat
// before a boundary is compared across it, by the later segment's measure.
TEST_F(DropCloseCandidatesTest, EachSegmentMeasuresByItsOwnBeat) {
    const BeatList segments{segmentAt(0, 250.0F), segmentAt(100000, 500.0F)};
    EXPECT_EQ(keptOf({weighing(0, 5, 0), weighing(2000, 5, 1), weighing(99000, 5, 2),
                      weighing(101000, 5, 3), weighing(103000, 5, 4)},
                     segments),
              (Positions{0, 2000, 99000, 103000}));
}

TEST_F(DropCloseCandidatesTest, CandidatesAtOrBehindTheEndOfTheTrackStay) {
    EXPECT_EQ(
        keptOf({weighing(100, 5, 0), weighing(199, 5, 1), weighing(200, 5, 2), weighing(201, 5, 3)},
               {segmentAt(0)}, 200),
        (Positions{100, 200, 201}));
}

TEST_F(DropCloseCandidatesTest, WithoutASegmentAllStay) {
    EXPECT_EQ(keptOf({weighing(100, 5, 0), weighing(101, 5, 1)}, {}), (Positions{100, 101}));
    EXPECT_EQ(keptOf({}), Positions{});
    EXPECT_EQ(keptOf({weighing(100, 5, 0)}), (Positions{100}));
}

TEST_F(DropCloseCandidatesTest, AbsurdIntervalsAndPositionsAreSafe) {
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    const BeatList raw{weighing(kLowest, 5, 0), weighing(0, 5, -3), weighing(kHighest, 5, 7)};
    for (const float interval : {0.0F, -500.0F, std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(keptOf(raw, {segmentAt(0, interval)}, kHighest), positionsOf(raw));
}

TEST_F(DropCloseCandidatesTest, YieldsOncePerBeatBehindTheFirst) {
    const long before = yieldCount();
    keptOf({weighing(1, 5, 0), weighing(2, 5, 1), weighing(3, 5, 2)});
    EXPECT_EQ(yieldCount() - before, 2);
}

}  // namespace
