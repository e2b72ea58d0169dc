// SPDX-License-Identifier: MIT
#include "key/KeyRanking.h"

#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using beatatlas::Chroma;
using beatatlas::KeyRanking;
using beatatlas::subtractUntilBelow;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class KeyRankingTest : public beatatlas::test::RoundTowardZero {
protected:
    double scoreOf(int key) const {
        for (std::size_t i = 0; i < 24; ++i)
            if (ranking.keys()[i] == key) return ranking.scores()[i];
        ADD_FAILURE() << "key " << key << " is not ranked";
        return kNaN;
    }
    KeyRanking ranking;
};

// A alone, 23 strong: it is the tonic of A (6 parts), the fifth of D (5), the third of F and F♯
// minor (3), the seventh of B♭ and B minor (3), the second of G, fourth of E, sixth of C and of C♯
// minor (2), and no note of C♯.
TEST_F(KeyRankingTest, ScoresAreTheDegreesWeighedInTwentyThirds) {
    Chroma chroma{};
    chroma[0] = 23.0;
    ranking.rank(chroma);
    for (const auto& [key, parts] : {std::pair{0, 6},
                                     {12, 6},
                                     {5, 5},
                                     {17, 5},
                                     {8, 3},
                                     {21, 3},
                                     {1, 3},
                                     {14, 3},
                                     {10, 2},
                                     {7, 2},
                                     {3, 2},
                                     {16, 2},
                                     {4, 0}})
        EXPECT_NEAR(scoreOf(key), parts, 1e-12) << key;
}

TEST_F(KeyRankingTest, AnEmptyChromaRanksTheKeysInTheirOrder) {
    ranking.rank({});
    for (int key = 0; key < 24; ++key) {
        EXPECT_EQ(ranking.keys()[static_cast<std::size_t>(key)], key);
        EXPECT_EQ(ranking.scores()[static_cast<std::size_t>(key)], 0.0);
    }
}

TEST_F(KeyRankingTest, TransposingTheChromaTransposesTheLeader) {
    for (int tonic = 0; tonic < 12; ++tonic) {
        Chroma major{};
        Chroma minor{};
        for (const auto& [semitones, strength] :
             {std::pair{0, 9.0}, {7, 8.0}, {2, 1.0}, {5, 1.0}}) {
            major[static_cast<std::size_t>((tonic + semitones) % 12)] = strength;
            minor[static_cast<std::size_t>((tonic + semitones) % 12)] = strength;
        }
        major[static_cast<std::size_t>((tonic + 4) % 12)] = 7.0;
        minor[static_cast<std::size_t>((tonic + 3) % 12)] = 7.0;
        ranking.rank(major);
        EXPECT_EQ(ranking.keys()[0], tonic);
        ranking.rank(minor);
        EXPECT_EQ(ranking.keys()[0], tonic + 12);
    }
}

/** A and E lead, and the major key by its sixth and seventh; its third is weaker than the minor one
 *  by `deficit`. */
Chroma majorWithAWeakThird(double deficit) {
    Chroma chroma{};
    chroma[0] = 300.0;
    chroma[7] = 300.0;
    chroma[2] = 50.0;
    chroma[5] = 50.0;
    chroma[4] = 50.0;
    chroma[3] = 50.0 + deficit;
    chroma[9] = 60.0;
    chroma[11] = 60.0;
    return chroma;
}

// Lead of the major key: (60 · 2 + 60 · 3 − 10 · 3) / 23 = 11.7; it is marked down by 10 twice.
TEST_F(KeyRankingTest, AMinorEndsFirstWhenItsThirdOutweighsTheMajorOne) {
    ranking.rank(majorWithAWeakThird(10.0));
    EXPECT_EQ(ranking.keys()[0], 12);
    const double unmarked =
        (300.0 * 11 + 50.0 * 2 + 50.0 * 2 + 50.0 * 3 + 60.0 * 2 + 60.0 * 3) / 23.0;
    EXPECT_NEAR(scoreOf(0), unmarked - 20.0, 1e-9) << "the marked-down score stays";
}

TEST_F(KeyRankingTest, TheMajorKeyStaysWhenItsThirdIsTheStrongerOrEqual) {
    for (double deficit : {0.0, -10.0}) {
        ranking.rank(majorWithAWeakThird(deficit));
        EXPECT_EQ(ranking.keys()[0], 0);
        EXPECT_NEAR(scoreOf(0), (300.0 * 11 + 350.0 + 300.0) / 23.0, 1e-9) << "not marked down";
    }
}

// The mirror: minor leads by F and G, its third C weaker than C♯.
TEST_F(KeyRankingTest, AMajorEndsFirstWhenItsThirdOutweighsTheMinorOne) {
    Chroma chroma{};
    chroma[0] = chroma[7] = 300.0;
    chroma[2] = chroma[5] = 50.0;
    chroma[3] = 50.0;
    chroma[4] = 60.0;
    chroma[8] = chroma[10] = 60.0;
    ranking.rank(chroma);
    EXPECT_EQ(ranking.keys()[0], 0);
}

TEST_F(KeyRankingTest, OnlyTheParallelKeyInSecondPlaceMatters) {
    Chroma chroma = majorWithAWeakThird(10.0);
    // F♯ and C♯ … strong enough to put another key second.
    chroma[4] = 290.0;
    chroma[3] = 300.0;
    chroma[9] = 290.0;
    chroma[11] = 300.0;
    ranking.rank(chroma);
    ASSERT_NE(ranking.keys()[1] % 12, ranking.keys()[0] % 12);
    const int leader = ranking.keys()[0];
    double unmarked = 0.0;
    const int parts[7] = {6, 2, 3, 2, 5, 2, 3};
    const int major[7] = {0, 2, 4, 5, 7, 9, 11};
    const int minor[7] = {0, 2, 3, 5, 7, 8, 10};
    for (int j = 0; j < 7; ++j)
        unmarked +=
            chroma[static_cast<std::size_t>((leader + (leader < 12 ? major[j] : minor[j])) % 12)] *
            parts[j] / 23.0;
    EXPECT_NEAR(ranking.scores()[0], unmarked, 1e-9);
}

/** The plain loop, one subtraction per round. */
double plainSubtractUntilBelow(double score, double step, double limit) {
    while (score >= limit) {
        const double next = score - step;
        if (!(next < score)) break;
        score = next;
    }
    return score;
}

TEST_F(KeyRankingTest, MarkingDownAtOnceHasTheBitsOfThePlainLoop) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int trial = 0; trial < 3000; ++trial) {
        const double score = std::ldexp(0.5 + unit(random), static_cast<int>(random() % 40) - 20);
        const double limit = score * (unit(random) - 0.2);
        const double step = score * std::pow(10.0, -3.5 * unit(random));
        ASSERT_EQ(subtractUntilBelow(score, step, limit),
                  plainSubtractUntilBelow(score, step, limit))
            << std::hexfloat << score << " " << step << " " << limit;
    }
}

// Steps of less than the last place lose a whole last place each time, rounded toward zero.
TEST_F(KeyRankingTest, MarkingDownBySmallestStepsHasTheBitsOfThePlainLoop) {
    const double score = 1.0 + 100.0 * 0x1p-52;
    const double limit = 1.0 - 1000.0 * 0x1p-53;
    EXPECT_EQ(subtractUntilBelow(score, 1e-300, limit), 1.0 - 1001.0 * 0x1p-53);
    EXPECT_EQ(plainSubtractUntilBelow(score, 1e-300, limit), 1.0 - 1001.0 * 0x1p-53);
    const double tiny = 1000.0 * 0x1p-1074;
    EXPECT_EQ(subtractUntilBelow(tiny, 0x1p-1074, 0.0), -0x1p-1074);
    EXPECT_EQ(subtractUntilBelow(0.0, 3.0, 0.0), -3.0);
}

// By the plain loop 2^52 rounds and more.
TEST_F(KeyRankingTest, EndsAtOnceWhenTheThirdsDifferByNextToNothing) {
    Chroma chroma = majorWithAWeakThird(0.0);
    chroma[3] = std::nextafter(chroma[4], 100.0);
    ranking.rank(chroma);
    EXPECT_EQ(ranking.keys()[0], 12);
    chroma = majorWithAWeakThird(0.0);
    chroma[4] = 0.0;
    chroma[3] = std::numeric_limits<double>::denorm_min();
    chroma[9] = chroma[11] = 90.0;
    ranking.rank(chroma);
    EXPECT_EQ(ranking.keys()[0], 12);
}

TEST_F(KeyRankingTest, MarkingDownEndsOnEveryNumber) {
    const std::vector<double> numbers{0.0,    -0.0,   1.0,       -1.0,       1e300,
                                      -1e300, 1e-310, kInfinity, -kInfinity, kNaN};
    for (double score : numbers)
        for (double limit : numbers)
            for (double step : {1e-320, 1e-20, 1.0, 1e308, kInfinity, kNaN}) {
                const double result = subtractUntilBelow(score, step, limit);
                EXPECT_FALSE(result > score);
            }
}

TEST_F(KeyRankingTest, EndsOnEveryChroma) {
    const std::vector<double> numbers{kNaN, kInfinity, -kInfinity, -5.0, 1e308, -1e308, 1e-320};
    for (double weakThird : numbers)
        for (double strongThird : numbers) {
            Chroma chroma = majorWithAWeakThird(10.0);
            chroma[4] = weakThird;
            chroma[3] = strongThird;
            ranking.rank(chroma);
            chroma[0] = strongThird;
            ranking.rank(chroma);
            chroma.fill(weakThird);
            ranking.rank(chroma);
        }
}

// The marking down relies on rounding toward zero; in another mode it still ends.
TEST(KeyRankingModeTest, EndsWhenRoundingToNearest) {
    EXPECT_EQ(subtractUntilBelow(1.0, 1e-300, 0.5), 1.0);
    EXPECT_LT(subtractUntilBelow(1.0, 1e-15, 0.5), 0.5);
}

TEST_F(KeyRankingTest, RankingAgainStartsFromTheKeysInTheirOrder) {
    ranking.rank(majorWithAWeakThird(10.0));
    ranking.rank({});
    EXPECT_EQ(ranking.keys()[0], 0);
    EXPECT_EQ(ranking.keys()[23], 23);
}

}  // namespace
