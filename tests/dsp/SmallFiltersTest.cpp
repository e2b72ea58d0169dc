// SPDX-License-Identifier: MIT
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beatatlas/dsp.h"
#include "support/RoundTowardZero.h"

namespace {

using ::testing::ElementsAre;

constexpr double kTwoPi = 6.283185307179586;

std::vector<float> impulse(std::size_t n) {
    std::vector<float> x(n, 0.0F);
    x[0] = 1.0F;
    return x;
}

// exp(-2π · 0.05) = exp(-0.3141593) = 0.7304027.
TEST(MakeLpf0Test, IsTheExponentialOfTheCutOff) {
    float a = 0.0F;
    float b = 0.0F;
    make_lpf0(&b, &a, 0.05F);
    EXPECT_NEAR(a, 0.7304027F, 1e-7);
    EXPECT_EQ(b, 1.0F - a);
    make_lpf0(&b, &a, 0.0F);
    EXPECT_EQ(a, 1.0F);
    EXPECT_EQ(b, 0.0F);
}

// At a quarter of the rate t = tan(π/4) = 1: b = 1/2, a1 = 0.
TEST(MakeLpf1Test, AtAQuarterOfTheRateAveragesTwoSamples) {
    std::array<float, 2> a{};
    std::array<float, 2> b{};
    make_lpf1(11025.0F, 44100.0F, a.data(), b.data());
    EXPECT_EQ(a[0], 1.0F);
    EXPECT_NEAR(a[1], 0.0F, 1e-7);
    EXPECT_NEAR(b[0], 0.5F, 1e-7);
    EXPECT_EQ(b[1], b[0]);
}

// The gain at frequency 0 of a first-order section is (b0 + b1) / (1 + a1) = 2t / 2t.
TEST(MakeLpf1Test, PassesAConstantUnchanged) {
    std::array<float, 2> a{};
    std::array<float, 2> b{};
    make_lpf1(1.0F, 5.0F, a.data(), b.data());
    EXPECT_NEAR((b[0] + b[1]) / (1.0F + a[1]), 1.0F, 1e-6);
}

// ω = π/2, sin 1, cos 0, q = 1/√2: α = 0.7071068, d = 1.7071068, b0 = 0.5 / d = 0.2928932, b1 = 2
// b0, a2 = 0.2928932 / d = 0.1715729.
TEST(MakeLpf2Test, AtAQuarterOfTheRateIsTheTabledButterworth) {
    std::array<float, 5> c{};
    make_lpf2(12000.0F, 0.70710677F, 48000.0F, c.data());
    EXPECT_NEAR(c[0], 0.2928932F, 1e-6);
    EXPECT_NEAR(c[1], 0.5857864F, 1e-6);
    EXPECT_EQ(c[2], c[0]);
    EXPECT_NEAR(c[3], 0.0F, 1e-6);
    EXPECT_NEAR(c[4], 0.1715729F, 1e-6);
}

TEST(MakeHpf2Test, AtAQuarterOfTheRateMirrorsTheLowPass) {
    std::array<float, 5> c{};
    make_hpf2(12000.0F, 0.70710677F, 48000.0F, c.data());
    EXPECT_NEAR(c[0], 0.2928932F, 1e-6);
    EXPECT_NEAR(c[1], -0.5857864F, 1e-6);
    EXPECT_EQ(c[2], c[0]);
    EXPECT_NEAR(c[3], 0.0F, 1e-6);
    EXPECT_NEAR(c[4], 0.1715729F, 1e-6);
}

// Gain at 0: (b0 + b1 + b2) / (1 + a1 + a2).
TEST(MakeLpf2Test, PassesAConstantThatTheHighPassStops) {
    std::array<float, 5> low{};
    std::array<float, 5> high{};
    make_lpf2(5000.0F, 0.9F, 44100.0F, low.data());
    make_hpf2(5000.0F, 0.9F, 44100.0F, high.data());
    EXPECT_NEAR((low[0] + low[1] + low[2]) / (1.0F + low[3] + low[4]), 1.0F, 1e-5);
    EXPECT_NEAR(high[0] + high[1] + high[2], 0.0F, 1e-6);
    EXPECT_EQ(low[3], high[3]);
    EXPECT_EQ(low[4], high[4]);
}

class SmallFilterWidthsTest : public beatatlas::test::RoundTowardZero {};

// Everything in single precision but the cosine of a1. The sweep must meet frequencies where the
// two widths give different floats, else it would prove nothing.
TEST_F(SmallFilterWidthsTest, OnlyTheFeedbackCosineIsTakenInDouble) {
    int tellingFrequencies = 0;
    for (int step = 1; step < 400; ++step) {
        const float fc = static_cast<float>(step) * 50.0F;
        const float omega = static_cast<float>(kTwoPi * static_cast<double>(fc) / 44100.0);
        const float d = 1.0F + std::sin(omega) / (2.0F * 0.7F);
        const double wide = -2.0 * std::cos(static_cast<double>(omega)) / static_cast<double>(d);
        std::array<float, 5> c{};
        make_lpf2(fc, 0.7F, 44100.0F, c.data());
        EXPECT_EQ(c[3], static_cast<float>(wide)) << fc;
        EXPECT_EQ(c[0], 0.5F * (1.0F - std::cos(omega)) / d) << fc;
        if (c[3] != -2.0F * std::cos(omega) / d) ++tellingFrequencies;
    }
    EXPECT_GT(tellingFrequencies, 0);
}

TEST_F(SmallFilterWidthsTest, TheInputGainIsMadeOfTheStoredPole) {
    int tellingCutOffs = 0;
    for (int step = 1; step < 100; ++step) {
        const float f = static_cast<float>(step) * 0.004F;
        float a = 0.0F;
        float b = 0.0F;
        make_lpf0(&b, &a, f);
        EXPECT_EQ(b, 1.0F - a);
        const double pole = std::exp(-kTwoPi * static_cast<double>(f));
        if (b != static_cast<float>(1.0 - pole)) ++tellingCutOffs;
    }
    EXPECT_GT(tellingCutOffs, 0);
}

// y = 0.5 x + 0.5 y': halves from sample to sample.
TEST(Filter1Test, ImpulseDecaysByThePole) {
    std::vector<float> x = impulse(4);
    std::vector<float> y(4);
    filter1(x.data(), y.data(), 4, 0.5F, 0.5F);
    EXPECT_THAT(y, ElementsAre(0.5F, 0.25F, 0.125F, 0.0625F));
}

TEST(Filter1Test, AnInfiniteSampleTurnsTheStateIntoNaN) {
    std::vector<float> x{std::numeric_limits<float>::infinity(), 0.0F};
    std::vector<float> y(2);
    filter1(x.data(), y.data(), 2, 0.5F, 0.5F);
    EXPECT_TRUE(std::isinf(y[0]));
    EXPECT_TRUE(std::isnan(y[1]));
}

// w = 1, 0.5, 0.25; y = 0.25 w + 0.25 w'.
TEST(Filter1HatMonoTest, ImpulseResponseByHand) {
    std::vector<float> x = impulse(3);
    std::vector<float> y(3);
    std::array<float, 2> a{1.0F, -0.5F};
    std::array<float, 2> b{0.25F, 0.25F};
    filter1_hat_mono(x.data(), y.data(), 3, a.data(), b.data());
    EXPECT_THAT(y, ElementsAre(0.25F, 0.375F, 0.1875F));
}

// s1, s2 after each sample: (1.5, 2.75), (2, -0.375), (-1.375, -0.5).
TEST(Filter2MonoTest, ImpulseResponseByHand) {
    std::vector<float> x = impulse(4);
    std::vector<float> y(4);
    std::array<float, 5> c{1.0F, 2.0F, 3.0F, 0.5F, 0.25F};
    filter2_mono(x.data(), y.data(), 4, c.data());
    EXPECT_THAT(y, ElementsAre(1.0F, 1.5F, 2.0F, -1.375F));
}

/** Each filter with fixed coefficients behind one signature. */
using Run = void (*)(float* in, float* out, int n);

void runFilter1(float* in, float* out, int n) {
    filter1(in, out, n, 0.3F, 0.7F);
}
void runFilter1Hat(float* in, float* out, int n) {
    std::array<float, 2> a{1.0F, -0.4F};
    std::array<float, 2> b{0.3F, 0.3F};
    filter1_hat_mono(in, out, n, a.data(), b.data());
}
void runFilter2(float* in, float* out, int n) {
    std::array<float, 5> c{0.2F, 0.4F, 0.2F, -0.3F, 0.1F};
    filter2_mono(in, out, n, c.data());
}

class EveryFilterTest : public ::testing::TestWithParam<Run> {
protected:
    std::vector<float> ramp() const { return {0.5F, -1.0F, 3.0F, 0.25F, -0.125F, 8.0F}; }
};

TEST_P(EveryFilterTest, KeepsNoStateBetweenCalls) {
    std::vector<float> x = ramp();
    std::vector<float> first(x.size());
    std::vector<float> second(x.size());
    GetParam()(x.data(), first.data(), 6);
    GetParam()(x.data(), second.data(), 6);
    EXPECT_EQ(first, second);
    EXPECT_EQ(x, ramp());
}

TEST_P(EveryFilterTest, WorksInPlace) {
    std::vector<float> x = ramp();
    std::vector<float> apart(x.size());
    GetParam()(x.data(), apart.data(), 6);
    GetParam()(x.data(), x.data(), 6);
    EXPECT_EQ(x, apart);
}

TEST_P(EveryFilterTest, WritesNothingForLengthsBelowOne) {
    float in = 1.0F;
    float out = 7.0F;
    GetParam()(&in, &out, 0);
    GetParam()(&in, &out, -3);
    EXPECT_EQ(out, 7.0F);
}

INSTANTIATE_TEST_SUITE_P(SmallFilters, EveryFilterTest,
                         ::testing::Values(&runFilter1, &runFilter1Hat, &runFilter2));

TEST(EmptyRoutinesTest, LookAtNoArgumentAndTouchNothing) {
    butter(nullptr, nullptr, 2, 0.5F, 'l');
    filter(nullptr, nullptr, nullptr, nullptr);
    find_v(nullptr, nullptr, nullptr, nullptr);
    std::array<float, 4> v{1.0F, 2.0F, 3.0F, 4.0F};
    butter(&v[0], &v[1], 2, 0.5F, 'h');
    filter(&v[0], &v[1], &v[2], &v[3]);
    find_v(&v[0], &v[1], &v[2], &v[3]);
    EXPECT_THAT(v, ElementsAre(1.0F, 2.0F, 3.0F, 4.0F));
}

}  // namespace
