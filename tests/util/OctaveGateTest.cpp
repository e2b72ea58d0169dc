// SPDX-License-Identifier: MIT
#include "util/OctaveGate.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gmock/gmock.h>

#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"
#include "support/signals.h"

namespace beatatlas::test {
namespace {

using ::testing::Each;

class OctaveGateTest : public RoundTowardZero {};

std::vector<float> gated(std::vector<float> magnitudes) {
    OctaveGate gate(static_cast<int>(magnitudes.size()));
    gate.apply(magnitudes.data());
    return magnitudes;
}

// Oracle: the rule bin by bin, each octave summed on its own.
std::vector<float> gatedPlainly(const std::vector<float>& magnitudes) {
    std::vector<float> out = magnitudes;
    const int bins = static_cast<int>(magnitudes.size());
    for (int k = 4; k < bins; ++k) {
        const int lo = static_cast<int>(std::floor(k * 0.70711356));
        const int hi = std::min(static_cast<int>(std::floor(k * 1.4142)), bins - 1);
        volatile float sum = 0.0F;
        for (int m = lo; m <= hi; ++m) sum = sum + magnitudes[static_cast<std::size_t>(m)];
        const volatile float weight = hi == lo ? 1.0F : 1.0F / static_cast<float>(hi - lo);
        const volatile float mean = sum * weight;
        const volatile float bar = mean * static_cast<float>(std::log10(k + 1.0));
        if (magnitudes[static_cast<std::size_t>(k)] < bar) out[static_cast<std::size_t>(k)] = 0.0F;
    }
    return out;
}

/** What bin 12 has to reach when its octave, bins 8 … 16, holds 100 and bin 12 holds x. Nine bins
 *  are summed, the weight is 1/8, and log10(13) = 1.1139. */
float barOfBin12(float x) {
    volatile float sum = 0.0F;
    for (int m = 8; m <= 16; ++m) sum = sum + (m == 12 ? x : 100.0F);
    const volatile float mean = sum * 0.125F;
    return mean * static_cast<float>(std::log10(13.0));
}

std::vector<float> octaveAround12(float x) {
    std::vector<float> magnitudes(32, 100.0F);
    magnitudes[12] = x;
    return magnitudes;
}

TEST_F(OctaveGateTest, KeepsABinThatEqualsItsBar) {
    // x = bar(x) is reached by trying again and again, since bar rises by a seventh of what x
    // rises.
    float x = 100.0F;
    for (int i = 0; i < 50; ++i) x = barOfBin12(x);
    ASSERT_EQ(x, barOfBin12(x));
    EXPECT_EQ(gated(octaveAround12(x))[12], x);
    EXPECT_EQ(gated(octaveAround12(std::nextafter(x, 0.0F)))[12], 0.0F);
}

// 9 bins of 100 give a mean of 112.5 and, times log10(13), a bar of 125.3; dividing by 9 it would
// be 111.4.
TEST_F(OctaveGateTest, SumsOneBinMoreThanItDividesBy) {
    const float x = 129.0F;
    // With x among them the bar is (800 + 129) / 8 × 1.1139 = 129.36, and (800 + 129) / 9 × 1.1139
    // = 114.98.
    EXPECT_EQ(gated(octaveAround12(x))[12], 0.0F);
    EXPECT_EQ(gated(octaveAround12(x + 1.0F))[12], x + 1.0F);
}

/** Whether bin k counts bin m to its octave: then it cannot stand out beside it. */
bool hears(std::size_t k, std::size_t m) {
    std::vector<float> magnitudes(2048, 0.0F);
    magnitudes[k] = 1.0F;
    magnitudes[m] = 1e9F;
    return gated(magnitudes)[k] == 0.0F;
}

// 1393 × 0.70711356 = 985.009, where half an octave down would be 984.9997; 985 × 1.4142 = 1392.99,
// where half an octave up would be 1393.0004.
TEST_F(OctaveGateTest, OctavesAreANarrowShadeOffTheSquareRootOfTwo) {
    EXPECT_TRUE(hears(1393, 985));
    EXPECT_FALSE(hears(1393, 984));
    EXPECT_TRUE(hears(985, 1392));
    EXPECT_FALSE(hears(985, 1393));
}

TEST_F(OctaveGateTest, HighestOctavesEndAtTheLastBin) {
    EXPECT_TRUE(hears(1500, 2047));
    EXPECT_TRUE(hears(2046, 2047));
    EXPECT_TRUE(hears(2047, 1447));
    EXPECT_FALSE(hears(2047, 1446));
}

TEST_F(OctaveGateTest, NeverTouchesTheLowestFourBins) {
    std::vector<float> magnitudes(32, 1000.0F);
    for (std::size_t k = 0; k < 5; ++k) magnitudes[k] = 0.001F;
    const std::vector<float> out = gated(magnitudes);
    for (std::size_t k = 0; k < 4; ++k) EXPECT_EQ(out[k], 0.001F) << k;
    EXPECT_EQ(out[4], 0.0F);
}

TEST_F(OctaveGateTest, AgreesWithTheRuleBinByBin) {
    for (const std::size_t bins : {1U, 2U, 4U, 8U, 16U, 100U, 1024U, 2048U}) {
        std::vector<float> magnitudes = whiteNoise(bins, 1000.0, bins);
        // Cubed, so that some bins stand out.
        for (float& x : magnitudes) x = std::fabs((x * x) * x);
        EXPECT_EQ(gated(magnitudes), gatedPlainly(magnitudes)) << bins;
    }
}

TEST_F(OctaveGateTest, SomeOfARoughSpectrumPassesAndSomeDoesNot) {
    std::vector<float> magnitudes = whiteNoise(2048, 10.0, 3);
    for (float& x : magnitudes) x = std::fabs((x * x) * x);
    const std::vector<float> out = gated(magnitudes);
    const auto silenced = std::count(out.begin(), out.end(), 0.0F);
    EXPECT_GT(silenced, 1000);
    EXPECT_LT(silenced, 2000);
}

TEST_F(OctaveGateTest, EvenSpectrumIsSilencedFromBin4Up) {
    const std::vector<float> out = gated(std::vector<float>(1024, 5.0F));
    // log10(k + 1) × (n + 1) / n passes 1 at k = 8: below, an even spectrum stands.
    EXPECT_EQ(out[1023], 0.0F);
    EXPECT_EQ(std::vector<float>(1024, 5.0F)[3], out[3]);
    EXPECT_THAT(std::vector<float>(out.begin() + 9, out.end()), Each(0.0F));
}

TEST_F(OctaveGateTest, KeepsWhatIsNotANumber) {
    std::vector<float> magnitudes(32, 100.0F);
    magnitudes[12] = std::nanf("");
    EXPECT_TRUE(std::isnan(gated(magnitudes)[12]));
    // Every bin whose octave holds it has a bar that is not a number, and stays.
    EXPECT_EQ(gated(magnitudes)[16], 100.0F);
}

TEST_F(OctaveGateTest, ASpectrumWithoutBinsIsLeftAlone) {
    OctaveGate(0).apply(nullptr);
}

// Sums grow in blocks of 16, 32 and 64, so lengths about these.
TEST_F(OctaveGateTest, GivesThePlainBitsInEveryForm) {
    for (const std::size_t bins : {0, 1, 3, 5, 15, 16, 17, 31, 33, 63, 64, 65, 129, 500, 2048}) {
        std::vector<float> magnitudes = whiteNoise(bins, 1000.0, bins + 1);
        for (float& m : magnitudes) m = std::fabs(m);
        for (const auto form : formsOfThisMachine()) {
            const FormScope scope(form);
            ASSERT_EQ(gated(magnitudes), gatedPlainly(magnitudes)) << bins << nameOf(form);
        }
    }
}

// What is no number spoils the octaves that hold it, and no other.
TEST_F(OctaveGateTest, GivesThePlainBitsAmongAbsurdMagnitudesInEveryForm) {
    for (const float odd : {HUGE_VALF, 3e38F, 1e-45F, 0.0F}) {
        std::vector<float> magnitudes = whiteNoise(600, 1000.0, 9);
        for (float& m : magnitudes) m = std::fabs(m);
        magnitudes[40] = magnitudes[333] = odd;
        for (const auto form : formsOfThisMachine()) {
            const FormScope scope(form);
            ASSERT_EQ(gated(magnitudes), gatedPlainly(magnitudes)) << odd << nameOf(form);
            magnitudes[40] = std::nanf("");
            const std::vector<float> got = gated(magnitudes);
            const std::vector<float> expected = gatedPlainly(magnitudes);
            for (std::size_t k = 0; k < got.size(); ++k)
                ASSERT_TRUE(got[k] == expected[k] || k == 40) << k << nameOf(form);
            magnitudes[40] = odd;
        }
    }
}

}  // namespace
}  // namespace beatatlas::test
