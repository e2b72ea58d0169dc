// SPDX-License-Identifier: MIT
#include "support/signals.h"

#include <cfenv>
#include <cmath>

#include <gtest/gtest.h>

#include "support/Digest.h"
#include "support/oscillator.h"

namespace beatatlas::test {
namespace {

constexpr double kPi = 3.14159265358979323846;

// Oracle: the maths library's sine, within a few units of the last place of a double.
TEST(Signals, OscillatorSineAgreesWithTheMathsLibrary) {
    for (int i = 0; i < 4096; ++i) {
        const double turns = i / 4096.0;
        EXPECT_NEAR(sineOf(phaseOfTurns(turns)), std::sin(2.0 * kPi * turns), 1e-15) << i;
    }
    EXPECT_EQ(sineOf(0), 0.0);
    EXPECT_EQ(sineOf(Phase{1} << 62), 1.0);
    EXPECT_EQ(sineOf(Phase{3} << 62), -1.0);
}

TEST(Signals, SilenceIsZeroAndImpulseIsOneFrame) {
    EXPECT_EQ(silence(3), (std::vector<float>{0.0F, 0.0F, 0.0F}));
    EXPECT_EQ(impulse(4, 2, 5.0), (std::vector<float>{0.0F, 0.0F, 5.0F, 0.0F}));
}

// First at 1, then 1 + round(2.5) = 4 (2.5 + 0.5 cut), 1 + 5 = 6, 1 + round(7.5) = 9.
TEST(Signals, ClickTrainRoundsEachPlaceOfAFractionalPeriod) {
    const std::vector<float> clicks = clickTrain(10, 1, 2.5, 1.0);
    EXPECT_EQ(clicks, (std::vector<float>{0, 1, 0, 0, 1, 0, 1, 0, 0, 1}));
}

TEST(Signals, SineStaysInPhaseAfterTenMinutes) {
    // 441 Hz at 44,100 is exactly 100 frames a cycle.
    const std::vector<float> tone = sine(44100 * 600, 441.0, 44100, 32767.0);
    EXPECT_NEAR(tone[44100 * 599 + 25], 32767.0F, 0.01F);
    EXPECT_NEAR(tone[44100 * 599 + 50], 0.0F, 0.01F);
}

TEST(Signals, SquareSpendsHalfOfEachCycleOnEitherSide) {
    const std::vector<float> tone = square(8, 12000.0, 48000, 7.0);
    EXPECT_EQ(tone, (std::vector<float>{7, 7, -7, -7, 7, 7, -7, -7}));
}

// Uniform noise in ±1 has mean 0 and mean square 1/3; with 100,000 values the deviations are about
// 0.002 and 0.001.
TEST(Signals, WhiteNoiseIsEvenlySpreadAndUncorrelated) {
    const std::vector<float> noise = whiteNoise(100000, 1.0, 7);
    double sum = 0.0;
    double squares = 0.0;
    double neighbours = 0.0;
    for (std::size_t i = 1; i < noise.size(); ++i) {
        sum += noise[i];
        squares += noise[i] * noise[i];
        neighbours += noise[i] * noise[i - 1];
        ASSERT_LE(std::fabs(noise[i]), 1.0F);
    }
    EXPECT_NEAR(sum / 100000, 0.0, 0.01);
    EXPECT_NEAR(squares / 100000, 1.0 / 3.0, 0.01);
    EXPECT_NEAR(neighbours / 100000, 0.0, 0.01);
    EXPECT_NE(whiteNoise(16, 1.0, 8), whiteNoise(16, 1.0, 7));
}

// From 100 to 300 Hz over one second: 100 + 50·0.5 … the phase after t seconds is 100 t + 100 t²
// turns, which is whole (75 turns) at t = 0.5: a rising zero.
TEST(Signals, SweepReachesTheFrequencyItShould) {
    const std::vector<float> tone = sweep(48000, 100.0, 300.0, 48000, 1.0);
    EXPECT_NEAR(tone[24000], 0.0F, 1e-6F);
    EXPECT_GT(tone[24010], 0.0F);
    EXPECT_LT(tone[23990], 0.0F);
}

TEST(Signals, MixingStopsAtTheEndOfTheSum) {
    std::vector<float> sum = {1.0F, 1.0F, 1.0F};
    mixInto(sum, {2.0F, 3.0F}, 2);
    EXPECT_EQ(sum, (std::vector<float>{1.0F, 1.0F, 3.0F}));
}

TEST(Signals, AreTheSameInEveryRoundingMode) {
    const auto digestOfAll = [] {
        Digest digest;
        digest.add(sine(5000, 997.0, 44100, 30000.0));
        digest.add(square(5000, 997.0, 44100, 0.1));
        digest.add(whiteNoise(5000, 0.1, 3));
        digest.add(sweep(5000, 20.0, 20000.0, 48000, 0.1));
        digest.add(clickTrain(5000, 3, 33.3, 0.1));
        return digest.value();
    };
    const std::uint64_t nearest = digestOfAll();
    for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
        std::fesetround(mode);
        const std::uint64_t other = digestOfAll();
        EXPECT_EQ(std::fegetround(), mode);
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(other, nearest) << "mode " << mode;
    }
}

// The published 64-bit FNV-1a value of the four bytes "foob" is taken from its definition, step by
// step: word 0x626F6F66 is 'f', 'o', 'o', 'b' in order of bytes.
TEST(Signals, DigestIsFnv1a) {
    Digest digest;
    digest.add(0x626F6F66U);
    std::uint64_t expected = 0xCBF29CE484222325U;
    for (const char c : {'f', 'o', 'o', 'b'})
        expected = (expected ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    EXPECT_EQ(digest.value(), expected);
}

}  // namespace
}  // namespace beatatlas::test
