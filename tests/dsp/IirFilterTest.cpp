// SPDX-License-Identifier: MIT
#include "dsp/IirFilter.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gmock/gmock.h>

#include "dsp/TestNoise.h"
#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

using ::testing::ElementsAreArray;

using IirFilterTest = test::RoundTowardZero;

std::vector<double> noise(std::size_t count) {
    const std::vector<float> narrow = test::whiteNoise(count, 7);
    return {narrow.begin(), narrow.end()};
}

std::vector<double> filtered(IirFilter& filter, const std::vector<double>& in) {
    std::vector<double> out(in.size());
    filter.operate(in.data(), out.data(), static_cast<int>(in.size()));
    return out;
}

/** The difference equation by index over the whole signal: the oracle of operate. */
std::vector<double> directForm(const IirFilter& f, const std::vector<double>& x) {
    std::vector<double> y(x.size());
    const auto at = [](const std::vector<double>& v, std::size_t n, std::size_t back) {
        return n >= back ? v[n - back] : 0.0;
    };
    for (std::size_t n = 0; n < x.size(); ++n) {
        double sum = f.section().b0 * x[n];
        sum += f.section().b1 * at(x, n, 1);
        sum += f.section().b2 * at(x, n, 2);
        sum -= f.section().a1 * at(y, n, 1);
        sum -= f.section().a2 * at(y, n, 2);
        y[n] = sum;
    }
    return y;
}

double gainAtHalfTheRate(const IirFilter& f) {
    return (f.section().b0 - f.section().b1 + f.section().b2) /
           (1.0 - f.section().a1 + f.section().a2);
}

double gainAtDc(const IirFilter& f) {
    return (f.section().b0 + f.section().b1 + f.section().b2) /
           (1.0 + f.section().a1 + f.section().a2);
}

TEST_F(IirFilterTest, IsTheIdentityWhenFresh) {
    IirFilter filter;
    EXPECT_EQ(filter.section().b0, 1.0);
    EXPECT_EQ(filter.section().a0, 1.0);
    for (const double zero :
         {filter.section().b1, filter.section().b2, filter.section().a1, filter.section().a2})
        EXPECT_EQ(zero, 0.0);
    const std::vector<double> in = noise(100);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(in));
}

TEST_F(IirFilterTest, ThroughDesignChangesNothing) {
    IirFilter fresh;
    fresh.createThroughFilter();
    const std::vector<double> in = noise(100);
    EXPECT_THAT(filtered(fresh, in), ElementsAreArray(in));

    IirFilter designed;
    designed.createLowPathFilter(150.0F, 48000.0F, 0.9F);
    const double b0 = designed.section().b0;
    designed.createThroughFilter();
    EXPECT_EQ(designed.section().b0, b0);
}

// At a quarter of the rate w0 is a right angle: s = 1, c = 0. With q = 0.5, alpha = 1 / (0.5 + 0.5)
// = 1, n = 2.
TEST_F(IirFilterTest, HighPassFollowsTheCookbook) {
    IirFilter filter;
    filter.createHiPathFilter(12000.0F, 48000.0F, 0.5F);
    EXPECT_NEAR(filter.section().b0, 0.25, 1e-14);
    EXPECT_NEAR(filter.section().b1, -0.5, 1e-14);
    EXPECT_EQ(filter.section().b2, filter.section().b0);
    EXPECT_NEAR(filter.section().a1, 0.0, 1e-14);
    EXPECT_NEAR(filter.section().a2, 0.0, 1e-14);
    EXPECT_EQ(filter.section().a0, 1.0);
}

// As above, with q = 0.25: alpha = 2, n = 3, a2 = (1 - 2) / 3.
TEST_F(IirFilterTest, LowPassFollowsTheCookbook) {
    IirFilter filter;
    filter.createLowPathFilter(12000.0F, 48000.0F, 0.25F);
    EXPECT_NEAR(filter.section().b0, 0.5 / 3.0, 1e-14);
    EXPECT_NEAR(filter.section().b1, 1.0 / 3.0, 1e-14);
    EXPECT_EQ(filter.section().b2, filter.section().b0);
    EXPECT_NEAR(filter.section().a1, 0.0, 1e-14);
    EXPECT_NEAR(filter.section().a2, -1.0 / 3.0, 1e-14);
    EXPECT_EQ(filter.section().a0, 1.0);
}

// At a sixth of the rate c = 1/2, s = sqrt(3)/2; q = sqrt(3)/4 would give alpha = 1. With q = 1:
// alpha = sqrt(3)/4.
TEST_F(IirFilterTest, BandPassOfQFollowsTheCookbook) {
    IirFilter filter;
    filter.createBandPathFilterQ(8000.0F, 48000.0F, 1.0F);
    const double alpha = std::sqrt(3.0) / 4.0;
    EXPECT_NEAR(filter.section().b0, alpha / (1.0 + alpha), 1e-13);
    EXPECT_EQ(filter.section().b1, 0.0);
    EXPECT_EQ(filter.section().b2, -filter.section().b0);
    EXPECT_NEAR(filter.section().a1, -1.0 / (1.0 + alpha), 1e-13);
    EXPECT_NEAR(filter.section().a2, (1.0 - alpha) / (1.0 + alpha), 1e-13);
}

// At a quarter of the rate: alpha = sinh(ln2/2 × 2 octaves × (π/2) / 1) = sinh(ln2 × π/2)
//                                 = (2^(π/2) - 2^(-π/2)) / 2.
TEST_F(IirFilterTest, BandPassOfABandwidthFollowsTheCookbook) {
    IirFilter filter;
    filter.createBandPathFilterW(12000.0F, 48000.0F, 2.0F);
    const double halfPi = 1.57079632679489662;
    const double alpha = (std::exp2(halfPi) - std::exp2(-halfPi)) / 2.0;
    EXPECT_NEAR(filter.section().b0, alpha / (1.0 + alpha), 1e-13);
    EXPECT_EQ(filter.section().b1, 0.0);
    EXPECT_EQ(filter.section().b2, -filter.section().b0);
    EXPECT_NEAR(filter.section().a2, (1.0 - alpha) / (1.0 + alpha), 1e-13);
}

// A narrow band's -3 dB points lie bandwidth octaves apart; the bilinear transform is compensated
// to first order.
TEST_F(IirFilterTest, BandwidthIsThatBetweenTheHalfPowerPoints) {
    IirFilter filter;
    filter.createBandPathFilterW(200.0F, 48000.0F, 1.0F);
    const auto gain = [&](double hz) {
        const double w = 2.0 * 3.14159265358979323846 * hz / 48000.0;
        const double reIn = filter.section().b0 + filter.section().b2 * std::cos(2.0 * w);
        const double imIn = filter.section().b2 * std::sin(2.0 * w);
        const double reBack =
            1.0 + filter.section().a1 * std::cos(w) + filter.section().a2 * std::cos(2.0 * w);
        const double imBack =
            filter.section().a1 * std::sin(w) + filter.section().a2 * std::sin(2.0 * w);
        return std::hypot(reIn, imIn) / std::hypot(reBack, imBack);
    };
    EXPECT_NEAR(gain(200.0), 1.0, 1e-6);
    EXPECT_NEAR(gain(200.0 * std::sqrt(2.0)), std::sqrt(0.5), 1e-3);
    EXPECT_NEAR(gain(200.0 / std::sqrt(2.0)), std::sqrt(0.5), 1e-3);
}

// cos of a full right angle is 6.1e-17 (π/2 as the nearest double); the factor in use is 6.48e-15
// short of 2π, so at a quarter of the rate c is a quarter of that, 1.62e-15, and with n = 2 so is
// -a1.
TEST_F(IirFilterTest, DesignsWithATwoPiThatIsALittleShort) {
    IirFilter filter;
    filter.createLowPathFilter(12000.0F, 48000.0F, 0.5F);
    EXPECT_GT(-filter.section().a1, 1.2e-15);
    EXPECT_LT(-filter.section().a1, 2.2e-15);
}

// 0.70710677f is 0.707106769084930...; its double neighbour 0.70710677 would give another alpha,
// relative 1.3e-9.
TEST_F(IirFilterTest, WidensTheFloatArgumentsBeforeAnyStep) {
    IirFilter filter;
    filter.createLowPathFilter(12000.0F, 48000.0F, 0.70710677F);
    const double alpha = 1.0 / (2.0 * 0.707106769084930419921875);
    EXPECT_NEAR(filter.section().a2, (1.0 - alpha) / (1.0 + alpha), 1e-14);
}

TEST_F(IirFilterTest, HighPassStopsDcAndPassesHalfTheRate) {
    IirFilter filter;
    filter.createHiPathFilter(6000.0F, 48000.0F, 0.70710677F);
    EXPECT_NEAR(gainAtDc(filter), 0.0, 1e-14);
    EXPECT_NEAR(gainAtHalfTheRate(filter), 1.0, 1e-14);
}

TEST_F(IirFilterTest, LowPassPassesDcAndStopsHalfTheRate) {
    IirFilter filter;
    filter.createLowPathFilter(6000.0F, 48000.0F, 0.70710677F);
    EXPECT_NEAR(gainAtDc(filter), 1.0, 1e-14);
    EXPECT_NEAR(gainAtHalfTheRate(filter), 0.0, 1e-14);
}

TEST_F(IirFilterTest, BandPassesRejectDcCompletely) {
    IirFilter q;
    q.createBandPathFilterQ(150.0F, 44100.0F, 0.9F);
    EXPECT_EQ(q.section().b0 + q.section().b1 + q.section().b2, 0.0);
    IirFilter w;
    w.createBandPathFilterW(150.0F, 44100.0F, 1.5F);
    EXPECT_EQ(w.section().b0 + w.section().b1 + w.section().b2, 0.0);
}

TEST_F(IirFilterTest, AgreesWithTheDifferenceEquationToTheBit) {
    const std::vector<double> in = noise(5000);
    IirFilter filter;
    filter.createHiPathFilter(283.0F, 44100.0F, 0.70710677F);
    const std::vector<double> expected = directForm(filter, in);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(expected));
}

// Each product and each sum is rounded by itself, toward zero, from left to right; the volatile
// steps keep the compiler from fusing or reordering the oracle.
TEST_F(IirFilterTest, SumsFromLeftToRight) {
    IirFilter filter;
    filter.createLowPathFilter(1234.5F, 48000.0F, 0.3F);
    const double in[3] = {0.7, -0.9, 0.31};
    double out[3];
    filter.operate(in, out, 3);
    volatile double products[5] = {filter.section().b0 * in[2], filter.section().b1 * in[1],
                                   filter.section().b2 * in[0], filter.section().a1 * out[1],
                                   filter.section().a2 * out[0]};
    volatile double sum = products[0] + products[1];
    sum = sum + products[2];
    sum = sum - products[3];
    sum = sum - products[4];
    EXPECT_EQ(out[2], sum);
}

TEST_F(IirFilterTest, CarriesItsHistoryAcrossBlocksOfAnyLength) {
    const std::vector<double> in = noise(4096);
    IirFilter whole;
    whole.createBandPathFilterQ(150.0F, 48000.0F, 0.9F);
    const std::vector<double> expected = filtered(whole, in);
    for (const int block : {1, 2, 3, 587, 588, 589, 640}) {
        IirFilter filter;
        filter.createBandPathFilterQ(150.0F, 48000.0F, 0.9F);
        std::vector<double> out(in.size());
        for (std::size_t at = 0; at < in.size(); at += static_cast<std::size_t>(block)) {
            const auto left = static_cast<int>(in.size() - at);
            filter.operate(&in[at], &out[at], left < block ? left : block);
        }
        EXPECT_THAT(out, ElementsAreArray(expected)) << "blocks of " << block;
    }
}

// The high-pass is given x = 1 twice as an identity, then designed: its first output under silence
// is b1·1 + b2·1 - a1·1 - a2·1.
TEST_F(IirFilterTest, DesignLeavesTheHistoryAlone) {
    IirFilter filter;
    const double ones[2] = {1.0, 1.0};
    double out[2];
    filter.operate(ones, out, 2);
    filter.createHiPathFilter(6000.0F, 48000.0F, 0.70710677F);
    const double silence = 0.0;
    filter.operate(&silence, out, 1);
    EXPECT_EQ(out[0], ((filter.section().b1 + filter.section().b2) - filter.section().a1) -
                          filter.section().a2);
    EXPECT_NE(out[0], 0.0);
}

TEST_F(IirFilterTest, IgnoresEmptyAndNegativeBlocks) {
    IirFilter filter;
    filter.createLowPathFilter(150.0F, 48000.0F, 0.9F);
    filter.operate(nullptr, nullptr, 0);
    filter.operate(nullptr, nullptr, -5);
    IirFilter twin;
    twin.createLowPathFilter(150.0F, 48000.0F, 0.9F);
    const std::vector<double> in = noise(10);
    EXPECT_THAT(filtered(filter, in), ElementsAreArray(filtered(twin, in)));
}

// A q of 0 makes alpha infinite: the feed-forward part vanishes and a2 is not a number. Nothing
// faults.
TEST_F(IirFilterTest, DoesNotValidateItsDesign) {
    IirFilter filter;
    filter.createLowPathFilter(150.0F, 48000.0F, 0.0F);
    EXPECT_EQ(filter.section().b0, 0.0);
    EXPECT_TRUE(std::isnan(filter.section().a2));
    filter.createBandPathFilterW(0.0F, 48000.0F, 1.5F);
    EXPECT_TRUE(std::isnan(filter.section().b0));
    filter.createHiPathFilter(150.0F, 0.0F, 0.9F);
    EXPECT_TRUE(std::isnan(filter.section().b0));
}

TEST_F(IirFilterTest, SurvivesInputThatIsNoSignal) {
    IirFilter filter;
    filter.createLowPathFilter(150.0F, 48000.0F, 0.9F);
    const double in[5] = {1e38, -1e38, std::numeric_limits<double>::infinity(), 1.0, 0.0};
    double out[5];
    filter.operate(in, out, 5);
    EXPECT_TRUE(std::isfinite(out[1]));
    EXPECT_FALSE(std::isfinite(out[2]));
    EXPECT_TRUE(std::isnan(out[4]));
}

}  // namespace
}  // namespace beatatlas
