// SPDX-License-Identifier: MIT
#include "key/PitchClassStrengths.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "key/PlainKeyCodeScale.h"
#include "support/RoundTowardZero.h"
#include "support/signals.h"

namespace {

using beatatlas::hopOf;
using beatatlas::KeyBuffer;
using beatatlas::pitchClassStrengths;

constexpr float kRate = 4000.0F;

/** A buffer of so many seconds that is only asked for its hop and class. */
KeyBuffer lasting(float seconds, float rate, int hopDivisor, int mode) {
    return {nullptr, static_cast<long>(seconds * rate), rate, 440.0F, hopDivisor, mode};
}

KeyBuffer over(const std::vector<float>& samples, int hopDivisor, int mode) {
    return {samples.data(), static_cast<long>(samples.size()), kRate, 440.0F, hopDivisor, mode};
}

class PitchClassStrengthsTest : public beatatlas::test::RoundTowardZero {};

TEST_F(PitchClassStrengthsTest, TracksOfThirtySecondsAreLong) {
    using beatatlas::LengthClass;
    using beatatlas::lengthClassOf;
    EXPECT_EQ(lengthClassOf(120000, kRate), LengthClass::isLong);
    EXPECT_EQ(lengthClassOf(119999, kRate), LengthClass::isShort);
}

TEST_F(PitchClassStrengthsTest, HopOfShortTracksDependsOnTheMode) {
    const std::vector<int> hops{2048, 2048, 4096, 8192, 8192};
    for (int mode = 0; mode < 5; ++mode)
        for (float rate : {4000.0F, 44100.0F})
            EXPECT_EQ(hopOf(lasting(10, rate, 1, mode)), hops[static_cast<std::size_t>(mode)]);
}

TEST_F(PitchClassStrengthsTest, HopOfLongTracksIsHalvedAtTheReducedRate) {
    for (int mode = 1; mode < 5; ++mode) {
        EXPECT_EQ(hopOf(lasting(40, 44100.0F, 1, mode)), 16384);
        EXPECT_EQ(hopOf(lasting(40, 8000.0F, 1, mode)), 16384);
        EXPECT_EQ(hopOf(lasting(40, 4000.0F, 1, mode)), 8192);
    }
}

TEST_F(PitchClassStrengthsTest, HopOfModeZeroAndUnknownModesIsTheSmallest) {
    for (int mode : {0, -1, 5, 100})
        for (float seconds : {10.0F, 40.0F})
            EXPECT_EQ(hopOf(lasting(seconds, 44100.0F, 1, mode)), 2048);
}

TEST_F(PitchClassStrengthsTest, HopIsDividedByWholeNumbers) {
    EXPECT_EQ(hopOf(lasting(10, kRate, 3, 0)), 682);
    EXPECT_EQ(hopOf(lasting(10, kRate, 2048, 0)), 1);
    for (int divisor :
         {2049, 0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_LT(hopOf(lasting(10, kRate, divisor, 0)), 1);
}

// Smallest buffer with a frame: 4892 + 2048 samples.
TEST_F(PitchClassStrengthsTest, AreZeroWithoutAWholeFrame) {
    const std::vector<float> noise = beatatlas::test::whiteNoise(6940, 1.0, 1);
    KeyBuffer buffer = over(noise, 1, 0);
    EXPECT_GT(pitchClassStrengths(buffer)[0], 0.0F);
    for (long count : {6939L, 4892L, 1L, 0L, -1L, std::numeric_limits<long>::min()}) {
        buffer.count = count;
        EXPECT_THAT(pitchClassStrengths(buffer), ::testing::Each(0.0F)) << count;
    }
}

TEST_F(PitchClassStrengthsTest, OfSilenceAreZero) {
    const std::vector<float> silence(20000, 0.0F);
    EXPECT_THAT(pitchClassStrengths(over(silence, 1, 0)), ::testing::Each(0.0F));
}

TEST_F(PitchClassStrengthsTest, DoNotDependOnAPowerOfTwoOfLevel) {
    std::vector<float> noise = beatatlas::test::whiteNoise(20000, 1.0, 2);
    const auto loud = pitchClassStrengths(over(noise, 1, 0));
    for (float& x : noise) x *= 0.0625F;
    EXPECT_EQ(pitchClassStrengths(over(noise, 1, 0)), loud);
}

// A tone in each octave in turn: it stands out in its own pitch class.
TEST_F(PitchClassStrengthsTest, APureToneIsStrongestInItsPitchClass) {
    for (int semitone : {3, 14, 25, 36, 47, 58, 64}) {
        const double hz = 55.0 * std::pow(2.0, semitone / 12.0);
        if (hz > 1600.0) continue;
        const auto tone = beatatlas::test::sine(20000, hz, 4000, 1.0);
        const auto strengths = pitchClassStrengths(over(tone, 1, 0));
        const auto strongest = std::max_element(strengths.begin(), strengths.end());
        EXPECT_EQ(strongest - strengths.begin(), semitone % 12) << semitone;
    }
}

/** What is compared with the plain form. */
struct Case {
    int mode;
    std::size_t samples;
    int hop;
    std::vector<float> octaveWeights;
};

// 125,000 samples at 4000 Hz are a long track.
TEST_F(PitchClassStrengthsTest, EqualThePlainFormBitForBit) {
    const std::vector<float> full{0.65F, 1.0F, 1.0F};
    const std::vector<float> apart{0.63F, 0.75F, 0.9F};
    const std::vector<Case> cases{{0, 30000, 2048, full},  {2, 30000, 4096, apart},
                                  {3, 50000, 8192, apart}, {4, 50000, 8192, full},
                                  {2, 125000, 8192, full}, {3, 125000, 8192, full},
                                  {1, 125000, 8192, full}, {1, 30000, 2048, full}};
    for (const Case& c : cases) {
        auto music = beatatlas::test::whiteNoise(c.samples, 0.2, 3);
        beatatlas::test::mixInto(music, beatatlas::test::sine(c.samples, 262.0, 4000, 0.5));
        const auto expected =
            beatatlas::test::PlainStrengths(music, kRate, 440.0F, c.hop).fold(c.octaveWeights);
        const auto strengths = pitchClassStrengths(over(music, 1, c.mode));
        for (std::size_t i = 0; i < 12; ++i)
            ASSERT_EQ(strengths[i], expected[i]) << "mode " << c.mode;
    }
}

// The top bin lies at 1661.2 Hz, the next semitone at 1760 Hz: twice 49.3 Hz over 98.8 Hz is less
// than one sample. Its magnitude, and with it the strength of its pitch class, is NaN; the others
// count.
TEST_F(PitchClassStrengthsTest, AtTheLowestRatesOnlyBinsThatSeeASampleCount) {
    const auto noise = beatatlas::test::whiteNoise(3000, 0.2, 3);
    for (const float rate : {49.3F, 45.0F, 40.0F}) {
        const auto expected =
            beatatlas::test::PlainStrengths(noise, rate, 440.0F, 4).fold({0.65F, 1.0F, 1.0F});
        const auto strengths = pitchClassStrengths({noise.data(), 3000, rate, 440.0F, 512, 0});
        EXPECT_TRUE(std::isnan(strengths[11])) << rate;
        for (std::size_t i = 0; i < 12; ++i) {
            if (std::isnan(expected[i])) {
                EXPECT_TRUE(std::isnan(strengths[i])) << rate << ' ' << i;
            } else {
                EXPECT_EQ(strengths[i], expected[i]) << rate << ' ' << i;
            }
        }
    }
}

TEST_F(PitchClassStrengthsTest, AbsurdSamplesEndInNoFault) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (float bad : {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity, 1e38F}) {
        std::vector<float> samples(20000, 0.1F);
        samples[7000] = bad;
        EXPECT_EQ(pitchClassStrengths(over(samples, 1, 0)).size(), 12U);
    }
}

}  // namespace
