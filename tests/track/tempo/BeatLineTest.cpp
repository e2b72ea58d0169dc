// SPDX-License-Identifier: MIT
#include "track/tempo/BeatLine.h"

#include <gtest/gtest.h>

namespace {

using beatatlas::track::inner::BeatLine;

TEST(BeatLine, TellsTheTimeOfEveryPlace) {
    const BeatLine line({1.0, 2.0, 4.0});
    EXPECT_EQ(line.timeAt(0.0), 1.0);
    EXPECT_EQ(line.timeAt(0.5), 1.5);
    EXPECT_EQ(line.timeAt(1.25), 2.5);
    EXPECT_EQ(line.timeAt(2.0), 4.0);
}

TEST(BeatLine, GoesStraightOnBeyondItsEnds) {
    const BeatLine line({1.0, 2.0, 4.0});
    EXPECT_EQ(line.timeAt(-2.0), -1.0);
    EXPECT_EQ(line.timeAt(3.0), 6.0);
}

TEST(BeatLine, TellsThePlaceOfEveryTime) {
    const BeatLine line({1.0, 2.0, 4.0});
    EXPECT_EQ(line.placeOf(1.5), 0.5);
    EXPECT_EQ(line.placeOf(2.0), 1.0);
    EXPECT_EQ(line.placeOf(3.0), 1.5);
    EXPECT_EQ(line.placeOf(0.0), 0.0);
    EXPECT_EQ(line.placeOf(9.0), 2.0);
}

}  // namespace
