// SPDX-License-Identifier: MIT
#include "track/tempo/stretches.h"

#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using beatatlas::track::inner::findStretches;

TEST(TempoStretches, AreOneWhereTheTempoIsSteady) {
    std::vector<double> beats = evenTimes(0.5, 0.5, 30.0);
    beats[20] += 0.03;  // one beat late
    const auto stretches = findStretches(beats);
    ASSERT_EQ(stretches.size(), 1U);
    EXPECT_EQ(stretches[0].from, beats.front());
    EXPECT_EQ(stretches[0].to, beats.back());
    EXPECT_NEAR(stretches[0].bpm, 120.0, 1e-9);
}

// Looking four beats ahead, a step of a tenth shows two beats before, and most at the last beat of
// the old tempo, 20 s.
TEST(TempoStretches, BeginWhereAnotherTempoDoes) {
    std::vector<double> beats = evenTimes(0.0, 0.5, 20.1);
    const std::vector<double> later = evenTimes(20.55, 0.55, 40.0);
    beats.insert(beats.end(), later.begin(), later.end());
    const auto stretches = findStretches(beats);
    ASSERT_EQ(stretches.size(), 2U);
    EXPECT_NEAR(stretches[0].bpm, 120.0, 1e-9);
    EXPECT_NEAR(stretches[1].bpm, 60.0 / 0.55, 1e-9);
    EXPECT_EQ(stretches[0].to, stretches[1].from);
    EXPECT_NEAR(stretches[1].from, 20.0, 1e-9);
}

TEST(TempoStretches, AreNoneOfASingleBeat) {
    EXPECT_TRUE(findStretches({}).empty());
    EXPECT_TRUE(findStretches({1.0}).empty());
    EXPECT_EQ(findStretches({1.0, 2.0}).size(), 1U);
}

}  // namespace
