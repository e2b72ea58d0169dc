// SPDX-License-Identifier: MIT
#include "peakss/grid/BeatInfoFinder.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"

namespace {

using beatatlas::test::beatsAt;
using peakss::BeatInfoFinder;
using peakss::BeatList;

TEST(BeatInfoFinderTest, FindsLastBeatAtOrBeforeThePosition) {
    const BeatList list = beatsAt({10, 20, 20, 30});
    EXPECT_EQ(BeatInfoFinder::b_serch(10, list.data(), 4), 0);
    EXPECT_EQ(BeatInfoFinder::b_serch(19, list.data(), 4), 0);
    EXPECT_EQ(BeatInfoFinder::b_serch(20, list.data(), 4), 2);
    EXPECT_EQ(BeatInfoFinder::b_serch(31, list.data(), 4), 3);
}

// Oracle: a linear scan over every list length up to 9 and every position around its beats.
TEST(BeatInfoFinderTest, AgreesWithLinearScan) {
    for (int count = 1; count < 10; ++count) {
        BeatList list;
        for (int i = 0; i < count; ++i) list.push_back(beatatlas::test::beatAt(i * 3));
        for (int pos = -2; pos < count * 3 + 2; ++pos) {
            int expected = -1;
            while (expected + 1 < count && expected * 3 + 3 <= pos) ++expected;
            EXPECT_EQ(BeatInfoFinder::b_serch(pos, list.data(), count), expected);
        }
    }
}

TEST(BeatInfoFinderTest, AllBeatsBehindThePositionGiveNone) {
    const BeatList list = beatsAt({10, 20});
    EXPECT_EQ(BeatInfoFinder::b_serch(9, list.data(), 2), -1);
}

TEST(BeatInfoFinderTest, NullArrayGivesNoneAndShortCountsGiveOneLess) {
    const BeatList list = beatsAt({10});
    EXPECT_EQ(BeatInfoFinder::b_serch(10, nullptr, 5), -1);
    EXPECT_EQ(BeatInfoFinder::b_serch(10, list.data(), 0), -1);
    EXPECT_EQ(BeatInfoFinder::b_serch(10, list.data(), -4), -5);
}

TEST(BeatInfoFinderTest, PositionBeforeTheFirstBeatMapsToTheFirst) {
    const BeatList list = beatsAt({10, 20, 30});
    EXPECT_EQ(BeatInfoFinder::findIndex(list, 9), 0);
    EXPECT_EQ(BeatInfoFinder::findIndex(list, std::numeric_limits<int>::min()), 0);
    EXPECT_EQ(BeatInfoFinder::findIndex(list, std::numeric_limits<int>::max()), 2);
    EXPECT_EQ(BeatInfoFinder::findIndex({}, 9), -1);
}

// 0 1 2 3 → the middle of four is index 1 (300 ≤ 250 fails), then index 0 (100 ≤ 250 holds) ends
// the search.
TEST(BeatInfoFinderTest, ListOutOfOrderFollowsTheSameComparisons) {
    const BeatList list = beatsAt({100, 300, 200, 400});
    EXPECT_EQ(BeatInfoFinder::findIndex(list, 250), 0);
}

}  // namespace
