// SPDX-License-Identifier: MIT
// Oracle: the mathematics library, narrowed.
#include "dsp/narrowedCosine.h"

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/VectorForms.h"

namespace {

using beatatlas::test::FormScope;
using beatatlas::test::formsOfThisMachine;
using beatatlas::test::nameOf;

constexpr double kPi = 3.141592653589793;

/** Bits, with which zeros differ by their sign; one NaN is as good as another. */
std::uint32_t bitsOf(float v) {
    return std::isnan(v) ? 1U : std::bit_cast<std::uint32_t>(v);
}

class NarrowedCosineTest : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override { std::fesetround(GetParam()); }
    void TearDown() override { std::fesetround(FE_TONEAREST); }

    void expectLibraryBits(const std::vector<double>& angles) {
        for (auto form : formsOfThisMachine()) {
            const FormScope scope(form);
            const int n = static_cast<int>(angles.size());
            std::vector<float> cosines(angles.size());
            std::vector<float> sines(angles.size());
            std::vector<float> heights(angles.size());
            beatatlas::narrowedTone(angles.data(), cosines.data(), sines.data(), n);
            beatatlas::narrowedHann(angles.data(), heights.data(), n);
            for (std::size_t i = 0; i < angles.size(); ++i) {
                // Through memory, so that both are computed in the mode of the test.
                const volatile double x = angles[i];
                const double c = std::cos(x);
                const auto height = static_cast<float>(0.5 - (0.5 * c));
                ASSERT_EQ(bitsOf(cosines[i]), bitsOf(static_cast<float>(c))) << x << nameOf(form);
                ASSERT_EQ(bitsOf(sines[i]), bitsOf(static_cast<float>(std::sin(x))))
                    << x << nameOf(form);
                ASSERT_EQ(bitsOf(heights[i]), bitsOf(height)) << x << nameOf(form);
            }
        }
    }
};

std::vector<double> chosenEvenly(double most, int count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<double> angles;
    for (int i = 0; i < count; ++i)
        angles.push_back(most * (static_cast<double>(random()) / 4294967296.0));
    return angles;
}

TEST_P(NarrowedCosineTest, GivesTheLibrarysBitsOverTheAnglesOfKernels) {
    expectLibraryBits(chosenEvenly(250.0, 400000, 1));
}

TEST_P(NarrowedCosineTest, GivesTheLibrarysBitsUpToAndBeyondItsRange) {
    expectLibraryBits(chosenEvenly(200000.0, 100000, 2));
}

// There one of them is next to 0, where floats lie closest, and the other next to 1, where the next
// float may be beyond.
TEST_P(NarrowedCosineTest, GivesTheLibrarysBitsAboutQuarterTurns) {
    std::vector<double> angles;
    for (int quarters = 0; quarters < 300; ++quarters)
        for (double off = 1.0; off > 1e-17; off /= 3.0)
            for (double side : {-off, 0.0, off}) angles.push_back((quarters * (kPi / 2.0)) + side);
    expectLibraryBits(angles);
}

// Every angle whose cosine is close to a float, or to the middle between two.
TEST_P(NarrowedCosineTest, GivesTheLibrarysBitsWhereTheNarrowingIsInDoubt) {
    std::mt19937 random(3);
    std::vector<double> angles;
    for (int i = 0; i < 20000; ++i) {
        const double steps = static_cast<double>(random() >> 7);  // half a float's step at 0.5 … 1
        angles.push_back(std::acos(0.5 + (steps * 0x1p-26)));
    }
    expectLibraryBits(angles);
}

TEST_P(NarrowedCosineTest, TakesAnglesWithoutMeaningAsTheLibraryDoes) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    expectLibraryBits({std::nan(""), kInfinity, -kInfinity, 1e300, -1.0, -0.0, 0.0, 5e-324, 1e-20,
                       std::numeric_limits<double>::max()});
}

TEST_P(NarrowedCosineTest, TakesAnyNumberOfAngles) {
    for (int count : {1, 2, 63, 64, 65, 129}) expectLibraryBits(chosenEvenly(7.0, count, 4));
    beatatlas::narrowedTone(nullptr, nullptr, nullptr, 0);
    beatatlas::narrowedHann(nullptr, nullptr, -1);
}

INSTANTIATE_TEST_SUITE_P(RoundingModes, NarrowedCosineTest,
                         ::testing::Values(FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD));

}  // namespace
