// SPDX-License-Identifier: MIT
#include "peakss/grid/dropCloseCandidates.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatsAt;
using beatatlas::test::kRate;
using beatatlas::test::positionsOf;
using peakss::BeatList;
using Positions = std::vector<int>;

class ClearNearItemsTest : public beatatlas::test::RoundTowardZero {
protected:
    static Positions keptOf(const Positions& positions, const Positions& heads = {}) {
        BeatList list = beatsAt(positions);
        for (const int head : heads) list[static_cast<std::size_t>(head)].segHead = true;
        peakss::clearNearItems(list, kRate);
        return positionsOf(list);
    }
};

TEST_F(ClearNearItemsTest, LaterOfTwoNearBeatsGoes) {
    EXPECT_EQ(keptOf({0, 10000, 24000}), (Positions{0, 24000}));
}

TEST_F(ClearNearItemsTest, EarlierOneGoesWhenTheLaterOpensAPhrase) {
    EXPECT_EQ(keptOf({0, 24000, 34000, 58000}, {2}), (Positions{0, 34000, 58000}));
}

// 24000 × 0.7 in single precision is 16799.999, cut to 16799: at that distance a beat is not near.
TEST_F(ClearNearItemsTest, LimitIsSinglePrecisionAndTruncated) {
    EXPECT_EQ(keptOf({0, 16798}), (Positions{0}));
    EXPECT_EQ(keptOf({0, 16799}), (Positions{0, 16799}));
}

// 20000 opens a phrase and drops 10000. It is not compared with 0 then, from which it is far
// enough; 30000 is compared with it and goes.
TEST_F(ClearNearItemsTest, ComparisonGoesOnWithTheBeatThatStays) {
    EXPECT_EQ(keptOf({0, 17000, 20000, 30000}, {2}), (Positions{0, 20000}));
    EXPECT_EQ(keptOf({0, 17000, 12000}, {2}), (Positions{0, 12000}));
}

TEST_F(ClearNearItemsTest, EmptyAndSingleListsStay) {
    EXPECT_EQ(keptOf({}), Positions{});
    EXPECT_EQ(keptOf({5}), (Positions{5}));
}

TEST_F(ClearNearItemsTest, DistanceAcrossTheNumberRangeIsSafe) {
    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    EXPECT_EQ(keptOf({kLowest, kHighest}), (Positions{kLowest, kHighest}));
}

TEST_F(ClearNearItemsTest, AbsurdIntervalsAreNearNothing) {
    for (const float interval : {0.0F, -500.0F, std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::quiet_NaN()}) {
        BeatList list = beatsAt({0, 1}, interval);
        peakss::clearNearItems(list, kRate);
        EXPECT_EQ(list.size(), 2U);
    }
}

}  // namespace
