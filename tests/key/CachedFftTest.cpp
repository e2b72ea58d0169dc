// SPDX-License-Identifier: MIT
#include "key/CachedFft.h"

#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using beatatlas::CachedFft;

struct Points {
    std::vector<double> re;
    std::vector<double> im;
};

Points noise(int n) {
    std::mt19937 random(static_cast<unsigned>(n));
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    Points points;
    for (int i = 0; i < n; ++i) {
        points.re.push_back(value(random));
        points.im.push_back(value(random));
    }
    return points;
}

/** The defining sum, not divided. */
std::complex<double> plainBin(const Points& x, std::size_t f, double sign) {
    const std::size_t n = x.re.size();
    std::complex<double> sum;
    for (std::size_t t = 0; t < n; ++t) {
        const double angle =
            sign * 6.283185307179586 * static_cast<double>((f * t) % n) / static_cast<double>(n);
        sum += std::complex<double>(x.re[t], x.im[t]) * std::polar(1.0, angle);
    }
    return sum;
}

class CachedFftTest : public beatatlas::test::RoundTowardZero {
protected:
    int transform(int n, Points& x) { return fft.fft(n, x.re.data(), x.im.data()); }
    CachedFft fft;
};

TEST_F(CachedFftTest, ForwardIsTheDefiningSumDividedByTheLength) {
    for (int n : {4, 8, 64, 512}) {
        const Points x = noise(n);
        Points spectrum = x;
        ASSERT_EQ(transform(n, spectrum), 0);
        for (std::size_t f = 0; f < spectrum.re.size(); ++f) {
            const auto expected = plainBin(x, f, -1.0) / static_cast<double>(n);
            ASSERT_NEAR(spectrum.re[f], expected.real(), 1e-12);
            ASSERT_NEAR(spectrum.im[f], expected.imag(), 1e-12);
        }
    }
}

TEST_F(CachedFftTest, InverseIsNotDivided) {
    const int n = 64;
    const Points x = noise(n);
    Points spectrum = x;
    ASSERT_EQ(transform(-n, spectrum), 0);
    for (std::size_t f = 0; f < spectrum.re.size(); ++f)
        ASSERT_NEAR(spectrum.re[f], plainBin(x, f, 1.0).real(), 1e-11);
}

TEST_F(CachedFftTest, ForwardThenInverseIsTheInput) {
    const Points x = noise(4096);
    Points back = x;
    transform(4096, back);
    transform(-4096, back);
    for (std::size_t i = 0; i < x.re.size(); ++i) {
        ASSERT_NEAR(back.re[i], x.re[i], 1e-11);
        ASSERT_NEAR(back.im[i], x.im[i], 1e-11);
    }
}

TEST_F(CachedFftTest, AnotherLengthInBetweenChangesNothing) {
    Points first = noise(256);
    Points second = first;
    Points other = noise(16);
    transform(256, first);
    transform(16, other);
    transform(0, other);
    transform(256, second);
    EXPECT_EQ(first.re, second.re);
    EXPECT_EQ(first.im, second.im);
}

TEST_F(CachedFftTest, PowerIsThatOfTheTransformOfRealValues) {
    for (int n : {256, 4096, 1024, 256}) {
        Points x = noise(n);
        x.im.assign(x.im.size(), 0.0);
        std::vector<double> values = x.re;
        std::vector<double> power((values.size() / 2) + 1);
        ASSERT_EQ(fft.power(n, values.data(), power.data()), 0);
        transform(n, x);
        for (std::size_t bin = 0; bin < power.size(); ++bin)
            ASSERT_EQ(power[bin], (x.re[bin] * x.re[bin]) + (x.im[bin] * x.im[bin])) << bin;
        Points other = noise(16);
        if (n == 4096) transform(16, other);
    }
}

TEST_F(CachedFftTest, LengthZeroFreesTheTablesAndTouchesNothing) {
    EXPECT_EQ(fft.fft(0, nullptr, nullptr), 0);
    Points x = noise(8);
    transform(8, x);
    EXPECT_EQ(fft.fft(0, nullptr, nullptr), 0);
}

TEST_F(CachedFftTest, OfOnePointIsTheIdentity) {
    Points x = noise(1);
    const Points before = x;
    EXPECT_EQ(transform(1, x), 0);
    EXPECT_EQ(x.re, before.re);
    EXPECT_EQ(x.im, before.im);
}

TEST_F(CachedFftTest, OtherLengthsEndAndStayInsideTheArrays) {
    for (int n : {2, 3, 6, 100, 1023}) {
        Points x = noise(n);
        EXPECT_EQ(transform(n, x), 0);
        EXPECT_EQ(transform(-n, x), 0);
    }
}

}  // namespace
