// SPDX-License-Identifier: MIT
#include "output/picture/barLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace output {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kRate = 100;

/** Bars of two seconds in four beats, the first beat an upbeat at 0 s: downbeats at 0.5 s, 2.5 s
 *  and so on. */
std::vector<beatatlas::track::Beat> beatsOf(int count) {
    std::vector<beatatlas::track::Beat> beats;
    for (int i = 0; i < count; ++i) beats.push_back({i * 0.5, 120.0, i * 50, (i + 3) % 4 + 1});
    return beats;
}

std::vector<int> numbersOf(const std::vector<BarLine>& lines) {
    std::vector<int> numbers;
    for (const BarLine& line : lines) numbers.push_back(line.number);
    return numbers;
}

TEST(barLines, StandWhereTheDownbeatsAre) {
    const TimeAxis axis(0.0, 10.0, {0.0, 0.0, 1000.0, 50.0});
    const std::vector<BarLine> lines = barLines(beatsOf(20), kRate, axis, 24.0);
    EXPECT_THAT(numbersOf(lines), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_DOUBLE_EQ(lines[0].x, 50.0);
    EXPECT_DOUBLE_EQ(lines[1].x, 250.0);
}

TEST(barLines, AreCountedFromTheBeginningOfTheTrack) {
    const TimeAxis axis(4.0, 9.0, {0.0, 0.0, 1000.0, 50.0});
    EXPECT_THAT(numbersOf(barLines(beatsOf(20), kRate, axis, 24.0)), ElementsAre(3, 4, 5));
}

// 40 s on 200 units: a bar takes ten, so that every fourth is the first to leave 24.
TEST(barLines, ThinOutEvenlyWhereTheyWouldStandTooClose) {
    const TimeAxis axis(0.0, 40.0, {0.0, 0.0, 200.0, 50.0});
    EXPECT_THAT(numbersOf(barLines(beatsOf(80), kRate, axis, 24.0)), ElementsAre(1, 5, 9, 13, 17));
}

TEST(barLines, AreNoneWhereThereAreNoBars) {
    const TimeAxis axis(0.0, 10.0, {0.0, 0.0, 1000.0, 50.0});
    EXPECT_THAT(barLines({}, kRate, axis, 24.0), IsEmpty());
    EXPECT_THAT(barLines({{0.0, 120.0, 0, 2}}, kRate, axis, 24.0), IsEmpty());
}

TEST(barLines, EndWhereSeveralBarsShareOnePlace) {
    const TimeAxis axis(0.0, 10.0, {0.0, 0.0, 1000.0, 50.0});
    const beatatlas::track::Beat downbeat{1.0, 120.0, 100, 1};
    EXPECT_THAT(numbersOf(barLines({downbeat, downbeat, downbeat}, kRate, axis, 24.0)),
                ElementsAre(1));
}

}  // namespace
}  // namespace output
