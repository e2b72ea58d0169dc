// SPDX-License-Identifier: MIT
#include "output/textFormat.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace output {
namespace {

TEST(textFormat, TellsTimesAsAClockDoes) {
    EXPECT_EQ(clockTime(0.0), "0:00.00");
    EXPECT_EQ(clockTime(7.25), "0:07.25");
    EXPECT_EQ(clockTime(187.25), "3:07.25");
    EXPECT_EQ(clockTime(3600.0), "1:00:00.00");
    EXPECT_EQ(clockTime(36061.5), "10:01:01.50");
}

TEST(textFormat, RoundsTimesToTheNearest) {
    EXPECT_EQ(clockTime(0.187), "0:00.19");
    EXPECT_EQ(clockTime(0.184), "0:00.18");
    EXPECT_EQ(clockTime(0.125), "0:00.13") << "just between: up, as in decimal notation";
    EXPECT_EQ(clockTime(0.29), "0:00.29") << "0.28999... in binary";
    EXPECT_EQ(clockTimeInSeconds(7.49), "0:07");
    EXPECT_EQ(clockTimeInSeconds(7.5), "0:08");
}

TEST(textFormat, CarriesIntoMinutesAndHours) {
    EXPECT_EQ(clockTime(59.994), "0:59.99");
    EXPECT_EQ(clockTime(59.996), "1:00.00");
    EXPECT_EQ(clockTime(3599.996), "1:00:00.00");
    EXPECT_EQ(clockTimeInSeconds(59.5), "1:00");
    EXPECT_EQ(clockTimeInSeconds(3599.5), "1:00:00");
}

// A damaged catalogue may hold any number.
TEST(textFormat, HasAnAnswerForEveryNumber) {
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(clockTime(std::nan("")), "0:00.00");
    EXPECT_EQ(clockTime(-infinite), "0:00.00");
    EXPECT_EQ(clockTime(infinite), clockTime(1e12));
    EXPECT_EQ(clockTimeInSeconds(1e300), clockTimeInSeconds(1e12));
}

TEST(textFormat, TakesTimesBeforeTheTrackAsItsBeginning) {
    EXPECT_EQ(clockTime(-0.5), "0:00.00");
    EXPECT_EQ(clockTimeInSeconds(-3.0), "0:00");
}

TEST(textFormat, SetsThousandsApart) {
    EXPECT_EQ(grouped(0), "0");
    EXPECT_EQ(grouped(999), "999");
    EXPECT_EQ(grouped(1000), "1,000");
    EXPECT_EQ(grouped(1020304), "1,020,304");
    EXPECT_EQ(grouped(2147483647), "2,147,483,647");
}

TEST(textFormat, TellsTemposWithTwoDigits) {
    EXPECT_EQ(bpmText(128.5), "128.50");
    EXPECT_EQ(bpmText(60.05), "60.05");
}

TEST(textFormat, CountsOneAndMany) {
    EXPECT_EQ(counted(1, "beat"), "1 beat");
    EXPECT_EQ(counted(0, "beat"), "0 beats");
    EXPECT_EQ(counted(1200, "beat"), "1,200 beats");
}

}  // namespace
}  // namespace output
