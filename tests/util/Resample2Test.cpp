// SPDX-License-Identifier: MIT
#include <array>
#include <climits>
#include <cmath>
#include <numeric>
#include <vector>

#include <gmock/gmock.h>

#include "beatatlas/utilities.h"
#include "support/RoundTowardZero.h"
#include "support/signals.h"

namespace beatatlas::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr float kUntouched = 12345.0F;

class Resample2Test : public RoundTowardZero {};

long lengthOf(const std::vector<float>& v) {
    return static_cast<long>(v.size());
}

std::vector<float> filtered(std::vector<float> in) {
    std::array<float, 9> a{};
    std::array<float, 9> b{};
    make_8(a.data(), b.data());
    std::vector<float> out(in.size());
    filter8_mono(in.data(), out.data(), lengthOf(in), a.data(), b.data());
    return out;
}

std::vector<float> resampled(std::vector<float> in, long outCount, int step) {
    std::vector<float> out(static_cast<std::size_t>(std::max(outCount, 1L)), kUntouched);
    resample2(out.data(), outCount, in.data(), lengthOf(in), 1.0F, step, 0);
    return out;
}

/** Level of a tone behind the filter against the tone itself, in dB, once it has settled. */
double responseDb(double partOfRate) {
    const std::vector<float> out = filtered(sine(60000, partOfRate * 48000.0, 48000, 1000.0));
    double squares = 0.0;
    for (std::size_t i = 12000; i < out.size(); ++i)
        squares += static_cast<double>(out[i]) * static_cast<double>(out[i]);
    return 10.0 * std::log10(squares / 48000.0 / (1000.0 * 1000.0 / 2.0));
}

TEST_F(Resample2Test, CoefficientsAreTheStoredSinglePrecisionNumbers) {
    std::array<float, 9> a{};
    std::array<float, 9> b{};
    EXPECT_EQ(make_8(a.data(), b.data()), a.data());
    // The stored numbers as hexadecimal floats, converted from the decimals with exact arithmetic.
    EXPECT_THAT(a, ElementsAre(0x1p+0F, -0x1.98fbbcp+2F, 0x1.200162p+4F, -0x1.d2bcd2p+4F,
                               0x1.dbb3b6p+4F, -0x1.381712p+4F, 0x1.014fd6p+3F, -0x1.e756d8p+0F,
                               0x1.95b576p-3F));
    EXPECT_THAT(b, ElementsAre(0x1.7a816ap-23F, 0x1.7a816ap-20F, 0x1.4b313ep-18F, 0x1.4b313ep-17F,
                               0x1.9dfd8cp-17F, 0x1.4b313ep-17F, 0x1.4b313ep-18F, 0x1.7a816ap-20F,
                               0x1.7a816ap-23F));
}

// x = 1, 0, 0: w0 = 1, then -a1, then (a1² rounded) - a2; y by the same hand.
TEST_F(Resample2Test, ImpulseResponseStartsAsByHand) {
    const std::vector<float> y = filtered({1.0F, 0.0F, 0.0F});
    const float a1 = -6.390364646911621F;
    const float a2 = 18.000337600708008F;
    const float b0 = 1.7625536941068276e-07F;
    const float b1 = 1.410042955285462e-06F;
    const float b2 = 4.935150627716212e-06F;
    volatile float second = b0 * -a1;
    second = second + b1;
    volatile float w = a1 * a1;
    w = w - a2;
    volatile float third = b0 * w;
    volatile float part = b1 * -a1;
    third = third + part;
    third = third + b2;
    EXPECT_EQ(y[0], b0);
    EXPECT_EQ(y[1], second);
    EXPECT_EQ(y[2], third);
}

// Oracle: the same recursion over a list of past states, each product and sum stored before the
// next.
TEST_F(Resample2Test, FilterTakesItsSumsFromLeftToRightInSinglePrecision) {
    std::array<float, 9> a{};
    std::array<float, 9> b{};
    make_8(a.data(), b.data());
    const std::vector<float> in = whiteNoise(5000, 20000.0, 5);
    const std::vector<float> out = filtered(in);
    std::vector<float> past(8, 0.0F);  // past[0] is the latest
    for (std::size_t i = 0; i < in.size(); ++i) {
        volatile float w0 = in[i];
        for (std::size_t k = 0; k < 8; ++k) {
            const volatile float product = a[k + 1] * past[k];
            w0 = w0 - product;
        }
        volatile float y = b[0] * w0;
        for (std::size_t k = 0; k < 8; ++k) {
            const volatile float product = b[k + 1] * past[k];
            y = y + product;
        }
        past.insert(past.begin(), static_cast<float>(w0));
        past.pop_back();
        ASSERT_EQ(out[i], y) << i;
    }
}

TEST_F(Resample2Test, FilterStartsFromSilenceAtEachCall) {
    const std::vector<float> noise = whiteNoise(300, 20000.0, 6);
    EXPECT_EQ(filtered(noise), filtered(noise));
}

TEST_F(Resample2Test, FilterNeverReadsTheLeadingDenominator) {
    std::array<float, 9> a{};
    std::array<float, 9> b{};
    make_8(a.data(), b.data());
    a[0] = std::nanf("");
    std::vector<float> in = whiteNoise(300, 20000.0, 6);
    std::vector<float> out(in.size());
    filter8_mono(in.data(), out.data(), 300, a.data(), b.data());
    EXPECT_EQ(out, filtered(in));
}

TEST_F(Resample2Test, FilterWorksInPlaceAndDoesNothingForNoSamples) {
    std::array<float, 9> a{};
    std::array<float, 9> b{};
    make_8(a.data(), b.data());
    const std::vector<float> in = whiteNoise(300, 20000.0, 6);
    std::vector<float> inPlace = in;
    filter8_mono(inPlace.data(), inPlace.data(), 300, a.data(), b.data());
    EXPECT_EQ(inPlace, filtered(in));
    filter8_mono(nullptr, nullptr, 0, a.data(), b.data());
    filter8_mono(nullptr, nullptr, -5, a.data(), b.data());
}

// Σb / Σa of the stored coefficients, in exact arithmetic, is 1.04164.
TEST_F(Resample2Test, StoredCoefficientsHaveAGainOf104AtZeroFrequency) {
    std::array<float, 9> a{};
    std::array<float, 9> b{};
    make_8(a.data(), b.data());
    const double gain =
        std::accumulate(b.begin(), b.end(), 0.0) / std::accumulate(a.begin(), a.end(), 0.0);
    EXPECT_NEAR(gain, 1.04164, 0.00001);
}

// The states reach 1 / Σa = 23,000, where one unit in the last place of a1 × w1 is 1/64: in single
// precision the output wanders some hundredths about the gain of the coefficients, and does not
// come to rest.
TEST_F(Resample2Test, ConstantSettlesAboutTheGainAtZeroFrequency) {
    const std::vector<float> out = filtered(std::vector<float>(100000, 1.0F));
    double sum = 0.0;
    for (std::size_t i = 5000; i < out.size(); ++i) {
        ASSERT_NEAR(out[i], 1.04F, 0.07F) << i;
        sum += static_cast<double>(out[i]);
    }
    EXPECT_NEAR(sum / 95000.0, 1.04, 0.01);
}

TEST_F(Resample2Test, ResponseIsThatOfADecimatorByTen) {
    EXPECT_NEAR(responseDb(0.02), 0.0, 0.4);
    EXPECT_NEAR(responseDb(0.04), 0.0, 0.4);
    EXPECT_NEAR(responseDb(0.05), -2.8, 0.1);
    EXPECT_NEAR(responseDb(0.07), -24.0, 0.5);
    EXPECT_NEAR(responseDb(0.1), -50.0, 0.5);
}

TEST_F(Resample2Test, StepTenTakesTheEighthSampleAndEveryTenthFromThere) {
    const std::vector<float> in = whiteNoise(1000, 20000.0, 7);
    const std::vector<float> all = filtered(in);
    const std::vector<float> out = resampled(in, 100, 10);
    for (std::size_t i = 0; i < 100; ++i) ASSERT_EQ(out[i], all[7 + (10 * i)]) << i;
}

TEST_F(Resample2Test, RatioAndReservedHaveNoEffect) {
    std::vector<float> in = whiteNoise(1000, 20000.0, 7);
    std::vector<float> out(90);
    resample2(out.data(), 90, in.data(), 1000, std::nanf(""), 10, LONG_MIN);
    EXPECT_EQ(out, resampled(in, 90, 10));
}

// 31 samples have filtered samples 7, 17 and 27 and no 37.
TEST_F(Resample2Test, ReadsStopAtTheLastFilteredSample) {
    const std::vector<float> in = whiteNoise(31, 20000.0, 8);
    const std::vector<float> all = filtered(in);
    EXPECT_THAT(resampled(in, 5, 10),
                ElementsAre(all[7], all[17], all[27], kUntouched, kUntouched));
    EXPECT_THAT(resampled({in.begin(), in.begin() + 27}, 3, 10),
                ElementsAre(filtered(in)[7], filtered(in)[17], kUntouched));
    EXPECT_THAT(resampled({in.begin(), in.begin() + 7}, 2, 10), Each(kUntouched));
    EXPECT_THAT(resampled({in.begin(), in.begin() + 8}, 2, INT_MAX),
                ElementsAre(all[7], kUntouched));
}

TEST_F(Resample2Test, StepsOfZeroAndBackwardStayInsideTheInput) {
    const std::vector<float> in = whiteNoise(31, 20000.0, 8);
    const std::vector<float> all = filtered(in);
    EXPECT_THAT(resampled(in, 3, 0), ElementsAre(all[7], all[7], all[7]));
    EXPECT_THAT(resampled(in, 4, -3), ElementsAre(all[7], all[4], all[1], kUntouched));
    EXPECT_THAT(resampled(in, 2, INT_MIN), ElementsAre(all[7], kUntouched));
}

TEST_F(Resample2Test, EmptyRequestsAndNullArraysDoNothing) {
    const std::vector<float> in = whiteNoise(31, 20000.0, 8);
    EXPECT_THAT(resampled(in, 0, 10), Each(kUntouched));
    EXPECT_THAT(resampled(in, -3, 10), Each(kUntouched));
    std::vector<float> samples = in;
    std::vector<float> out(3, kUntouched);
    resample2(out.data(), 3, samples.data(), 0, 1.0F, 10, 0);
    resample2(out.data(), 3, samples.data(), LONG_MIN, 1.0F, 10, 0);
    resample2(out.data(), 3, nullptr, 31, 1.0F, 10, 0);
    resample2(nullptr, 3, samples.data(), 31, 1.0F, 10, 0);
    EXPECT_THAT(out, Each(kUntouched));
}

TEST_F(Resample2Test, MayWriteOverItsInput) {
    std::vector<float> in = whiteNoise(1000, 20000.0, 7);
    const std::vector<float> apart = resampled(in, 99, 10);
    resample2(in.data(), 99, in.data(), 1000, 1.0F, 10, 0);
    EXPECT_EQ(std::vector<float>(in.begin(), in.begin() + 99), apart);
}

TEST_F(Resample2Test, AbsurdSamplesPassThrough) {
    for (const float absurd : {1e38F, HUGE_VALF, std::nanf("")}) {
        std::vector<float> in(100, 1.0F);
        in[10] = absurd;
        const std::vector<float> out = resampled(in, 9, 10);
        EXPECT_EQ(out[0], filtered(std::vector<float>(100, 1.0F))[7]);
    }
}

}  // namespace
}  // namespace beatatlas::test
