// SPDX-License-Identifier: MIT
#include "peakss/grid/tempoMatch.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using peakss::matchesTempo;

constexpr float kInfinite = std::numeric_limits<float>::infinity();
constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

class TempoMatchTest : public beatatlas::test::RoundTowardZero {};

TEST_F(TempoMatchTest, MatchIsStrictAtBothEdges) {
    EXPECT_TRUE(matchesTempo(500.0F, 500.0F));
    EXPECT_FALSE(matchesTempo(480.0F, 500.0F));
    EXPECT_FALSE(matchesTempo(520.0F, 500.0F));
    EXPECT_TRUE(matchesTempo(std::nextafter(480.0F, 500.0F), 500.0F));
    EXPECT_TRUE(matchesTempo(std::nextafter(520.0F, 500.0F), 500.0F));
}

TEST_F(TempoMatchTest, DoubleAndHalfCountAsTheSameTempo) {
    EXPECT_TRUE(matchesTempo(1000.0F, 500.0F));
    EXPECT_TRUE(matchesTempo(250.0F, 500.0F));
    EXPECT_FALSE(matchesTempo(750.0F, 500.0F));
    EXPECT_FALSE(matchesTempo(1040.0F, 500.0F));  // its half is 520
    EXPECT_FALSE(matchesTempo(240.0F, 500.0F));   // its double is 480
    EXPECT_FALSE(matchesTempo(2000.0F, 500.0F));
}

// 4 % of 400 is 16 ms, but of 416 more: the reference decides.
TEST_F(TempoMatchTest, ToleranceIsThatOfTheReference) {
    EXPECT_FALSE(matchesTempo(416.0F, 400.0F));
    EXPECT_TRUE(matchesTempo(400.0F, 416.0F));
}

TEST_F(TempoMatchTest, NothingMatchesAReferenceThatIsNoTempo) {
    for (const float reference : {0.0F, -500.0F, kInfinite, -kInfinite, kNoNumber}) {
        for (const float value : {0.0F, 20.0F, -500.0F, 500.0F, kInfinite, kNoNumber})
            EXPECT_FALSE(matchesTempo(value, reference)) << value << " against " << reference;
    }
    EXPECT_FALSE(matchesTempo(kNoNumber, 500.0F));
    EXPECT_FALSE(matchesTempo(3e38F, 500.0F));
}

}  // namespace
