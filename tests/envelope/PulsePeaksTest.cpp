// SPDX-License-Identifier: MIT
#include "envelope/PulsePeaks.h"

#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using PulsePeaksTest = RoundTowardZero;
using Levels = std::vector<std::int16_t>;
using Indices = std::vector<int>;

struct Result {
    explicit Result(const Levels& envelope)
        : levels(envelope.size()), peaks(retainPulsePeaks(envelope, levels)) {}
    Levels levels;
    Indices peaks;
};

// 90 falls to 50 (ratio 1.8), 80 to 0: both confirmed, the average is 85, 80 is dropped.
TEST_F(PulsePeaksTest, KeepsThePeaksNotBelowTheAverage) {
    const Result result({0, 50, 90, 50, 80, 0});
    EXPECT_EQ(result.peaks, Indices{2});
    EXPECT_EQ(result.levels, (Levels{0, 0, 90, 0, 0, 0}));
}

// (90 + 81 + 85) / 3 = 85.33 is cut to 85, so 85 stays.
TEST_F(PulsePeaksTest, AverageIsCutToAWholeLevel) {
    EXPECT_EQ(Result({0, 90, 0, 81, 0, 85, 0}).peaks, (Indices{1, 5}));
}

TEST_F(PulsePeaksTest, AFallToExactlyTwoThirdsConfirmsNothing) {
    EXPECT_EQ(Result({0, 90, 60, 60, 100, 0}).peaks, Indices{4});
    EXPECT_EQ(Result({0, 90, 59, 59, 88, 0}).peaks, Indices{1});  // average 89
}

TEST_F(PulsePeaksTest, APlateauIsPlacedAtItsFirstValue) {
    EXPECT_EQ(Result({0, 90, 90, 90, 0}).peaks, Indices{1});
}

// The ratio to a level below 0 is below 0. The peak at 1 waits, is passed by 95 at 3 and confirmed
// there by the fall to 10.
TEST_F(PulsePeaksTest, AFallStraightBelowZeroWaitsForALevelAboveIt) {
    EXPECT_EQ(Result({0, 90, -80, 95, 10}).peaks, Indices{3});
    EXPECT_EQ(Result({0, 90, -80, 20, 0}).peaks, Indices{1});
}

TEST_F(PulsePeaksTest, APeakThatNeverFallsIsNotConfirmed) {
    const Result result({0, 100, 0, 10, 20, 90});
    EXPECT_EQ(result.peaks, Indices{1});
}

// Nothing counted: threshold 0, so every index from 1 on whose level is not negative is retained.
TEST_F(PulsePeaksTest, WithoutAnyPeakEveryIndexIsRetained) {
    EXPECT_EQ(Result(Levels(5)).peaks, (Indices{1, 2, 3, 4}));
    EXPECT_EQ(Result({0, 1, 2, 3}).peaks, (Indices{1, 2, 3}));
}

// A rise that ends at exactly 0 is confirmed with level 0, which is not counted.
TEST_F(PulsePeaksTest, AMaximumAtZeroDoesNotCount) {
    EXPECT_EQ(Result({0, -50, 0, -50, 80, 0}).peaks, Indices{4});
}

TEST_F(PulsePeaksTest, FewerThanTwoValuesGiveNoPeaks) {
    EXPECT_TRUE(Result(Levels{}).peaks.empty());
    EXPECT_TRUE(Result(Levels{100}).peaks.empty());
}

TEST_F(PulsePeaksTest, LevelsOfAnEarlierRunStayInTheGame) {
    const Levels envelope{0, 50, 0, 60, 0, 0};
    Levels levels{0, 0, 0, 0, 0, 70};
    EXPECT_EQ(retainPulsePeaks(envelope, levels), (Indices{3, 5}));
}

TEST_F(PulsePeaksTest, ExtremeLevelsKeepTheirOrder) {
    EXPECT_EQ(Result({0, 32767, 0, -32768, 32767, 1}).peaks, (Indices{1, 4}));
}

}  // namespace
}  // namespace beatatlas::test
