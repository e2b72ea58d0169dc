// SPDX-License-Identifier: MIT
#include "envelope/BeatPeriodSearch.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using BeatPeriodSearchTest = RoundTowardZero;

std::vector<std::int16_t> pulses(std::size_t values, double start, double period) {
    std::vector<std::int16_t> envelope(values);
    for (int i = 0; start + i * period + 0.5 < static_cast<double>(values); ++i) {
        envelope[static_cast<std::size_t>(start + i * period + 0.5)] = 100;
    }
    return envelope;
}

TEST_F(BeatPeriodSearchTest, FindsThePeriodOfPulsesToAHundredth) {
    // 180 pulses: a hundredth off is 1.8 values at the last one, so few of them are met.
    for (const double period : {185.63, 187.5, 189.21}) {
        const double found = findBeatPeriod(pulses(40000, 20.0, period), 20, 187.5, 180);
        EXPECT_NEAR(found, period, 0.006) << period;
    }
}

// Of equal sums the first trial stands in both passes: (L − 2 + 0 × 0.1) − 0.1 + 0 × 0.01.
TEST_F(BeatPeriodSearchTest, SilenceKeepsTheShortestPeriod) {
    const double shortest = ((187.5 - 2.0) + 0 * 0.1) + -0.1;
    EXPECT_EQ(findBeatPeriod(std::vector<std::int16_t>(1000), 0, 187.5, 5), shortest);
}

// A level that rises all along asks for the longest period: 102.1, or the first trial after which
// no point of the 19 moves on.
TEST_F(BeatPeriodSearchTest, StaysWithinTwoPointOneValuesOfTheGivenLength) {
    std::vector<std::int16_t> rising(2000);
    for (std::size_t k = 0; k < rising.size(); ++k) rising[k] = static_cast<std::int16_t>(k);
    const double longest = findBeatPeriod(rising, 0, 100.0, 19);
    EXPECT_LE(longest, 102.1);
    EXPECT_GT(longest, 102.0);
    std::vector<std::int16_t> falling(rising.rbegin(), rising.rend());
    EXPECT_NEAR(findBeatPeriod(falling, 0, 100.0, 19), 97.9, 1e-9);
}

TEST_F(BeatPeriodSearchTest, ResultLiesOnAGridOfOneHundredth) {
    const double found = findBeatPeriod(pulses(40000, 0.0, 188.337), 0, 187.5, 180);
    const double steps = (found - (187.5 - 2.1)) / 0.01;
    EXPECT_NEAR(steps, std::round(steps), 1e-6);
}

// The points before the envelope count nothing, those inside still do.
TEST_F(BeatPeriodSearchTest, PointsBeforeTheStartAreSkipped) {
    const double found = findBeatPeriod(pulses(40000, 50.0, 188.0), 50 - 4 * 188, 187.5, 180);
    EXPECT_NEAR(found, 188.0, 0.01);
}

// Levels that wrapped below 0: the first trial is the first best, not a sum of 0.
TEST_F(BeatPeriodSearchTest, FirstTrialIsTheFirstBestEvenBelowZero) {
    std::vector<std::int16_t> envelope(1000, -100);
    envelope[188] = -50;  // met by 1 × period + 0.5 for periods from 187.5 on: trial 20
    const double found = findBeatPeriod(envelope, 0, 187.5, 2);
    EXPECT_GE(found, 187.5);
    EXPECT_LT(found, 188.5);
}

TEST_F(BeatPeriodSearchTest, SurvivesAbsurdInput) {
    const std::vector<std::int16_t> envelope(100, 1);
    for (const double length : {0.0, 1e300, -1e300, std::nan("")}) {
        for (const std::int64_t start : {std::int64_t{-5000000000}, std::int64_t{5000000000}}) {
            findBeatPeriod(envelope, start, length, 50);
            findBeatPeriod({}, start, length, 50);
        }
    }
}

}  // namespace
}  // namespace beatatlas::test
