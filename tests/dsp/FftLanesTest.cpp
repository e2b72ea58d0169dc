// SPDX-License-Identifier: MIT
#include "dsp/fftLanes.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/fftCore.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

namespace fft = beatatlas::fft;

struct Points {
    std::vector<double> re;
    std::vector<double> im;
};

Points noise(std::size_t n) {
    std::mt19937 random(static_cast<unsigned>(n));
    std::uniform_real_distribution<double> value(-32768.0, 32768.0);
    Points points;
    for (std::size_t i = 0; i < n; ++i) {
        points.re.push_back(value(random));
        points.im.push_back(value(random));
    }
    return points;
}

/** Whole numbers, and no imaginary part: many exact zeros on the way, of both signs. */
Points sparse(std::size_t n) {
    Points points{std::vector<double>(n, 0.0), std::vector<double>(n, 0.0)};
    for (std::size_t i = 0; i < n; i += 5) points.re[i] = static_cast<double>(i % 7) - 3.0;
    for (std::size_t i = 0; i < n; i += 3) points.im[i] = -0.0;
    return points;
}

/** Bits, with which zeros differ by their sign; one NaN is as good as another. */
std::vector<std::uint64_t> bitsOf(const Points& points) {
    std::vector<std::uint64_t> bits;
    for (const auto* part : {&points.re, &points.im})
        for (double v : *part) bits.push_back(std::isnan(v) ? 1U : std::bit_cast<std::uint64_t>(v));
    return bits;
}

class FftLanesTest : public beatatlas::test::RoundTowardZero {
protected:
    void prepare(std::int64_t n) {
        size = n;
        sines.assign(static_cast<std::size_t>(fft::sineTableLength(n)), 0.0);
        reversal.assign(static_cast<std::size_t>(n), 0);
        fft::fillSineTable(n, sines.data());
        fft::fillBitReversal(n, reversal.data());
        ASSERT_TRUE(lanes.create(n, sines.data(), reversal.data()));
    }

    void expectPlainBits(const Points& points) {
        for (bool inverse : {false, true}) {
            Points expected = points;
            fft::transform(size, inverse, sines.data(), reversal.data(), expected.re.data(),
                           expected.im.data());
            for (auto form : beatatlas::test::formsOfThisMachine()) {
                const beatatlas::test::FormScope scope(form);
                Points got = points;
                lanes.run(inverse, got.re.data(), got.im.data());
                EXPECT_EQ(bitsOf(got), bitsOf(expected))
                    << size << (inverse ? " inverse " : " forward ")
                    << beatatlas::test::nameOf(form);
            }
        }
    }

    std::int64_t size = 0;
    std::vector<double> sines;
    std::vector<int> reversal;
    fft::LaneTransform lanes;
};

TEST_F(FftLanesTest, GivesTheBitsOfThePlainTransformInEveryForm) {
    for (std::size_t n = 64; n <= 16384; n *= 2) {
        prepare(static_cast<std::int64_t>(n));
        expectPlainBits(noise(n));
        expectPlainBits(sparse(n));
    }
}

TEST_F(FftLanesTest, SpecialValuesTravelAsInThePlainTransform) {
    using Limits = std::numeric_limits<double>;
    prepare(256);
    for (double special : {Limits::denorm_min(), 1e308, Limits::infinity(), -Limits::infinity(),
                           Limits::quiet_NaN()}) {
        Points points = sparse(256);
        points.re[3] = special;
        points.im[200] = -special;
        expectPlainBits(points);
    }
    expectPlainBits({std::vector<double>(256, -0.0), std::vector<double>(256, -0.0)});
}

TEST_F(FftLanesTest, TheProductWithTheInverseLengthIsTheQuotient) {
    prepare(64);
    Points points = noise(64);
    using Limits = std::numeric_limits<double>;
    points.im = {};
    for (double v : {0.0, -0.0, 1.0, Limits::denorm_min(), -63.0 * Limits::denorm_min(),
                     Limits::min(), -Limits::min(), Limits::max(), Limits::infinity(),
                     Limits::quiet_NaN(), 1e-306, -3.1e-307})
        points.im.push_back(v);
    points.im.resize(64, 1.0);
    Points expected = points;
    for (double& v : expected.re) v /= 64.0;
    for (double& v : expected.im) v /= 64.0;
    for (auto form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        Points got = points;
        lanes.divideByLength(got.re.data(), got.im.data());
        EXPECT_EQ(bitsOf(got), bitsOf(expected)) << beatatlas::test::nameOf(form);
    }
}

TEST_F(FftLanesTest, TakesPowersOfTwoFromSixtyFourUp) {
    for (std::int64_t n : {64, 128, 4096, 1 << 30}) EXPECT_TRUE(fft::LaneTransform::takes(n)) << n;
    for (std::int64_t n : {0, 1, 2, 32, 63, 65, 96, 4095})
        EXPECT_FALSE(fft::LaneTransform::takes(n)) << n;
}

}  // namespace
