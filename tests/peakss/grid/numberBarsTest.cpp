// SPDX-License-Identifier: MIT
#include "peakss/grid/numberBars.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatsAt;
using beatatlas::test::evenBeats;
using beatatlas::test::groupsOf;
using beatatlas::test::positionsOf;
using peakss::BeatList;
using Numbers = std::vector<int>;

class NumberBarsTest : public beatatlas::test::RoundTowardZero {
protected:
    static Numbers numbersOf(int reference, int barBeats, int count = 6) {
        BeatList grid = evenBeats(1000, 1000, count);
        peakss::numberBars(grid, reference, barBeats);
        return groupsOf(grid);
    }
};

TEST_F(NumberBarsTest, BeatAtTheReferenceIsNumberOne) {
    EXPECT_EQ(numbersOf(1000, 4), (Numbers{1, 2, 3, 4, 1, 2}));
    EXPECT_EQ(numbersOf(3000, 4), (Numbers{3, 4, 1, 2, 3, 4}));
    EXPECT_EQ(numbersOf(6000, 4), (Numbers{4, 1, 2, 3, 4, 1}));
}

TEST_F(NumberBarsTest, ReferenceBetweenBeatsMeansTheEarlierOne) {
    EXPECT_EQ(numbersOf(3999, 4), (Numbers{3, 4, 1, 2, 3, 4}));
}

TEST_F(NumberBarsTest, ReferenceBeforeTheFirstBeatMeansTheFirst) {
    EXPECT_EQ(numbersOf(0, 4), (Numbers{1, 2, 3, 4, 1, 2}));
}

TEST_F(NumberBarsTest, BarsHaveAtLeastFourBeats) {
    EXPECT_EQ(numbersOf(1000, 3), (Numbers{1, 2, 3, 4, 1, 2}));
    EXPECT_EQ(numbersOf(1000, -7), (Numbers{1, 2, 3, 4, 1, 2}));
    EXPECT_EQ(numbersOf(3000, 5), (Numbers{4, 5, 1, 2, 3, 4}));
    EXPECT_EQ(numbersOf(2000, std::numeric_limits<int>::max(), 3),
              (Numbers{std::numeric_limits<int>::max(), 1, 2}));
}

TEST_F(NumberBarsTest, EmptyGridStaysEmpty) {
    EXPECT_EQ(numbersOf(1000, 4, 0), Numbers{});
}

TEST_F(NumberBarsTest, FirstAnchorIsTheFirstBeatOfADetectorBand) {
    BeatList grid = beatsAt({100, 200, 300, 400});
    grid[0].band = -1;
    grid[1].band = 6;
    grid[2].band = 5;
    EXPECT_EQ(peakss::firstAnchorPosition(grid), 300);
    grid[2].band = -1;
    grid[3].band = -1;
    EXPECT_EQ(peakss::firstAnchorPosition(grid), 0);
    EXPECT_EQ(peakss::firstAnchorPosition({}), 0);
}

TEST_F(NumberBarsTest, BeatsOutsideTheTrackAreTrimmed) {
    BeatList grid = beatsAt({-1, 0, 500, 1000, 1001});
    peakss::trimToTrack(grid, 1000);
    EXPECT_EQ(positionsOf(grid), (std::vector<int>{0, 500, 1000}));
}

}  // namespace
