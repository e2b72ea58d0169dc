// SPDX-License-Identifier: MIT
#include <bit>
#include <cmath>
#include <complex>
#include <cstdint>
#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beatatlas/dsp.h"
#include "dsp/fftCore.h"
#include "support/RoundTowardZero.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr double kTwoPi = 6.283185307179586;

/** A signal or spectrum of n points in two arrays. */
struct Points {
    explicit Points(int n) : re(static_cast<std::size_t>(n)), im(static_cast<std::size_t>(n)) {}
    std::vector<float> re;
    std::vector<float> im;
};

Points noise(int n) {
    std::mt19937 random(static_cast<unsigned>(n));
    std::uniform_real_distribution<float> value(-1.0F, 1.0F);
    Points points(n);
    for (float& x : points.re) x = value(random);
    for (float& x : points.im) x = value(random);
    return points;
}

int transform(int n, Points& points) {
    return fft_less_normalize(n, points.re.data(), points.im.data());
}

/** The defining sum in double precision: the oracle. */
std::vector<std::complex<double>> plainDft(const Points& x, double sign) {
    const std::size_t n = x.re.size();
    std::vector<std::complex<double>> spectrum(n);
    for (std::size_t f = 0; f < n; ++f)
        for (std::size_t t = 0; t < n; ++t) {
            const double angle =
                sign * kTwoPi * static_cast<double>((f * t) % n) / static_cast<double>(n);
            spectrum[f] += std::complex<double>(x.re[t], x.im[t]) * std::polar(1.0, angle);
        }
    return spectrum;
}

class FftLessNormalizeTest : public beatatlas::test::RoundTowardZero {};

TEST_F(FftLessNormalizeTest, OfOnePointIsTrivial) {
    for (int n : {1, -1}) {
        Points x(1);
        x.re[0] = 3.0F;
        x.im[0] = -2.0F;
        EXPECT_EQ(transform(n, x), 0);
        EXPECT_EQ(x.re[0], 3.0F);
        EXPECT_EQ(x.im[0], -2.0F);
    }
}

TEST_F(FftLessNormalizeTest, OfNoPointsTouchesNothing) {
    EXPECT_EQ(fft_less_normalize(0, nullptr, nullptr), 0);
}

TEST_F(FftLessNormalizeTest, AnImpulseHasTheSameValueInEveryBin) {
    for (int n : {4, 8, 64, 1024}) {
        Points x(n);
        x.re[0] = 1.0F;
        EXPECT_EQ(transform(n, x), 0);
        EXPECT_THAT(x.re, Each(1.0F));
        EXPECT_THAT(x.im, Each(0.0F));
    }
}

// 24 bits of mantissa, cut at each of log2(n) stages, on values that grow like the square root of
// n.
TEST_F(FftLessNormalizeTest, ForwardAndInverseAreTheDefiningSums) {
    for (int n : {4, 8, 16, 64, 256, 1024}) {
        for (double sign : {-1.0, 1.0}) {
            Points x = noise(n);
            const auto expected = plainDft(x, sign);
            ASSERT_EQ(transform(sign < 0.0 ? n : -n, x), 0);
            const double tolerance = 2e-5 * std::sqrt(static_cast<double>(n));
            for (std::size_t f = 0; f < expected.size(); ++f) {
                ASSERT_NEAR(x.re[f], expected[f].real(), tolerance) << n << " bin " << f;
                ASSERT_NEAR(x.im[f], expected[f].imag(), tolerance) << n << " bin " << f;
            }
        }
    }
}

// Cut toward zero, the tabled sines are up to 2e-5 short, at each of 12 stages: 2.4e-4 of the
// value.
TEST_F(FftLessNormalizeTest, ForwardThenInverseIsTheInputTimesTheLength) {
    const int n = 4096;
    const Points original = noise(n);
    Points x = original;
    transform(n, x);
    transform(-n, x);
    for (std::size_t i = 0; i < x.re.size(); ++i) {
        ASSERT_NEAR(x.re[i] / 4096.0F, original.re[i], 3e-4);
        ASSERT_NEAR(x.im[i] / 4096.0F, original.im[i], 3e-4);
    }
}

TEST_F(FftLessNormalizeTest, BothDirectionsGiveARealInputTheSameMagnitudes) {
    const int n = 256;
    Points forward = noise(n);
    std::fill(forward.im.begin(), forward.im.end(), 0.0F);
    Points inverse = forward;
    transform(n, forward);
    transform(-n, inverse);
    std::vector<float> a(256);
    std::vector<float> b(256);
    calc_mag(n, a.data(), forward.re.data(), forward.im.data());
    calc_mag(n, b.data(), inverse.re.data(), inverse.im.data());
    EXPECT_EQ(a, b);
}

// The arrays are exactly |n| long: an address sanitizer sees any step outside.
TEST_F(FftLessNormalizeTest, OtherLengthsEndAndStayInsideTheArrays) {
    for (int n : {2, 3, 5, 6, 7, 12, 100, 1000, 1023, 1025}) {
        Points x = noise(n);
        EXPECT_EQ(transform(n, x), 0) << n;
        EXPECT_EQ(transform(-n, x), 0) << n;
    }
}

TEST_F(FftLessNormalizeTest, IsTheSameOnEveryCall) {
    Points first = noise(512);
    Points second = first;
    transform(512, first);
    transform(512, second);
    EXPECT_EQ(first.re, second.re);
    EXPECT_EQ(first.im, second.im);
}

// The double form of the same core is what the session's key finder uses; its oracle is the same
// sum.
TEST_F(FftLessNormalizeTest, TheDoubleFormIsTheDefiningSumToTwelveDigits) {
    const int n = 512;
    const Points x = noise(n);
    const auto expected = plainDft(x, -1.0);
    std::vector<double> re(x.re.begin(), x.re.end());
    std::vector<double> im(x.im.begin(), x.im.end());
    std::vector<double> sines(static_cast<std::size_t>(beatatlas::fft::sineTableLength(n)));
    std::vector<int> reversal(static_cast<std::size_t>(n));
    beatatlas::fft::fillSineTable<double>(n, sines.data());
    beatatlas::fft::fillBitReversal(n, reversal.data());
    beatatlas::fft::transform<double>(n, false, sines.data(), reversal.data(), re.data(),
                                      im.data());
    for (std::size_t f = 0; f < expected.size(); ++f) {
        ASSERT_NEAR(re[f], expected[f].real(), 1e-11);
        ASSERT_NEAR(im[f], expected[f].imag(), 1e-11);
    }
}

class MakeSintblTest : public beatatlas::test::RoundTowardZero {};

// No recurrence step at n = 8: entries 0, 1 and 2 are set outright, the rest mirrors them.
TEST_F(MakeSintblTest, OfEightPointsByHand) {
    constexpr float r = 0.70710677F;
    std::vector<float> table(10, 9.0F);
    make_sintbl(8, table.data());
    EXPECT_THAT(table, ElementsAre(0.0F, r, 1.0F, r, 0.0F, -r, -1.0F, -r, 0.0F, r));
}

TEST_F(MakeSintblTest, IsASineOfOnePeriodAndAQuarter) {
    const int n = 4096;
    std::vector<float> table(static_cast<std::size_t>(n + n / 4));
    make_sintbl(n, table.data());
    for (std::size_t k = 0; k < table.size(); ++k)
        ASSERT_NEAR(table[k], std::sin(kTwoPi * static_cast<double>(k) / n), 2e-5) << k;
}

// One step of the recurrence in the widths told: a mirror of the arithmetic for n = 16.
TEST_F(MakeSintblTest, RotatesInSinglePrecision) {
    const float t = static_cast<float>(std::sin(0.19634954084936207));
    const float dc = 2.0F * t * t;
    const double wide = static_cast<double>(dc);
    std::vector<float> table(20);
    make_sintbl(16, table.data());
    EXPECT_EQ(table[1], static_cast<float>(std::sqrt(wide * (2.0 - wide))));
    EXPECT_EQ(table[3], 1.0F - dc);
    EXPECT_EQ(table[2], 0.70710677F);
}

TEST_F(MakeSintblTest, OtherPeriodsStayInsideTheTable) {
    make_sintbl(0, nullptr);
    make_sintbl(-8, nullptr);
    for (int n = 1; n < 40; ++n) {
        std::vector<float> table(static_cast<std::size_t>(n + n / 4));
        make_sintbl(n, table.data());
        EXPECT_EQ(table[0], 0.0F) << n;
    }
}

TEST(MakeBitrevTest, OfEightPointsByHand) {
    std::vector<int> table(8, -1);
    EXPECT_EQ(make_bitrev(8, table.data()), 0);
    EXPECT_THAT(table, ElementsAre(0, 4, 2, 6, 1, 5, 3, 7));
}

TEST(MakeBitrevTest, UndoesItself) {
    std::vector<int> table(1024);
    make_bitrev(1024, table.data());
    for (int i = 0; i < 1024; ++i)
        ASSERT_EQ(table[static_cast<std::size_t>(table[static_cast<std::size_t>(i)])], i);
}

TEST(MakeBitrevTest, OfOnePointIsZeroAndOfNoneNothing) {
    int entry = -1;
    EXPECT_EQ(make_bitrev(1, &entry), 0);
    EXPECT_EQ(entry, 0);
    EXPECT_EQ(make_bitrev(0, nullptr), 0);
    EXPECT_EQ(make_bitrev(-4, nullptr), 0);
}

TEST(MakeBitrevTest, OtherLengthsEndWithEntriesInsideTheTable) {
    for (int n = 1; n < 300; ++n) {
        std::vector<int> table(static_cast<std::size_t>(n), -1);
        make_bitrev(n, table.data());
        for (int entry : table) {
            ASSERT_GE(entry, 0) << n;
            ASSERT_LT(entry, n) << n;
        }
    }
}

TEST(CalcMagTest, IsTheLengthOfEachPoint) {
    std::vector<float> re{3.0F, 0.0F, -5.0F};
    std::vector<float> im{4.0F, 0.0F, 12.0F};
    std::vector<float> out(3, 9.0F);
    calc_mag(3, out.data(), re.data(), im.data());
    EXPECT_THAT(out, ElementsAre(5.0F, 0.0F, 13.0F));
    calc_mag(0, nullptr, nullptr, nullptr);
    calc_mag(-1, nullptr, nullptr, nullptr);
}

// (1e20)² leaves the floats: in single precision the length is infinite, in double it would be
// 1e20.
TEST(CalcMagTest, SquaresInSinglePrecision) {
    std::vector<float> re{1e20F};
    std::vector<float> im{0.0F};
    float out = 0.0F;
    calc_mag(1, &out, re.data(), im.data());
    EXPECT_TRUE(std::isinf(out));
}

TEST(CalcPhaseTest, OfNothingIsZero) {
    float zero = 0.0F;
    float out = 9.0F;
    calc_phase(1, &out, &zero, &zero);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(out), 0U);
}

TEST(CalcPhaseTest, TellsTheQuadrant) {
    std::vector<float> re{1.0F, 0.0F, -1.0F, 0.0F, 1.0F};
    std::vector<float> im{0.0F, 1.0F, 0.0F, -1.0F, 1.0F};
    std::vector<float> out(5);
    calc_phase(5, out.data(), re.data(), im.data());
    const std::vector<double> expected{0.0, kTwoPi / 4, kTwoPi / 2, -kTwoPi / 4, kTwoPi / 8};
    for (std::size_t i = 0; i < out.size(); ++i) EXPECT_NEAR(out[i], expected[i], 1e-6);
    calc_phase(0, nullptr, nullptr, nullptr);
}

}  // namespace
