// SPDX-License-Identifier: MIT
#include "dsp/RealSpectrum.h"

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/fftCore.h"
#include "support/Allocations.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

namespace fft = beatatlas::fft;
using Values = std::vector<double>;

class RealSpectrumTest : public beatatlas::test::RoundTowardZero {
protected:
    void prepare(std::size_t n) {
        sines.assign(static_cast<std::size_t>(fft::sineTableLength(static_cast<std::int64_t>(n))),
                     0.0);
        fft::fillSineTable(static_cast<std::int64_t>(n), sines.data());
        ASSERT_TRUE(spectrum.create(static_cast<std::int64_t>(n), sines.data()));
    }

    /** By the transform of complex values: the oracle. */
    Values powerPlainly(Values re) const {
        const auto n = static_cast<std::int64_t>(re.size());
        Values im(re.size(), 0.0);
        std::vector<int> reversal(re.size());
        fft::fillBitReversal(n, reversal.data());
        fft::transform(n, false, sines.data(), reversal.data(), re.data(), im.data());
        Values power;
        for (std::size_t bin = 0; bin <= re.size() / 2; ++bin) {
            const double x = re[bin] / static_cast<double>(n);
            const double y = im[bin] / static_cast<double>(n);
            power.push_back((x * x) + (y * y));
        }
        return power;
    }

    Values powerOf(Values values) const {
        Values power((values.size() / 2) + 1, -1.0);
        spectrum.run(values.data(), power.data());
        return power;
    }

    void expectPlainBits(const Values& values) const {
        const Values expected = powerPlainly(values);
        for (auto form : beatatlas::test::formsOfThisMachine()) {
            const beatatlas::test::FormScope scope(form);
            const Values got = powerOf(values);
            for (std::size_t bin = 0; bin < expected.size(); ++bin)
                ASSERT_EQ(std::bit_cast<std::uint64_t>(got[bin]),
                          std::bit_cast<std::uint64_t>(expected[bin]))
                    << bin << " of " << values.size() << ' ' << beatatlas::test::nameOf(form);
        }
    }

    Values sines;
    fft::RealSpectrum spectrum;
};

TEST_F(RealSpectrumTest, GivesTheBitsOfTheComplexTransformInEveryForm) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> value(-32768.0, 32768.0);
    for (std::size_t n : {256U, 1024U, 4096U, 16384U}) {
        prepare(n);
        for (int round = 0; round < 5; ++round) {
            Values values(n);
            for (double& v : values) v = value(random);
            expectPlainBits(values);
        }
    }
}

// Many exact zeros on the way, of both signs; and sums that cancel.
TEST_F(RealSpectrumTest, SparseAndRegularInputGivesTheBitsOfTheComplexTransform) {
    for (std::size_t n : {256U, 4096U}) {
        prepare(n);
        for (std::size_t period : {1U, 2U, 3U, 5U, 8U, 64U, 100U, 256U}) {
            Values sparse(n, -0.0);
            Values square(n);
            for (std::size_t i = 0; i < n; i += period)
                sparse[i] = static_cast<double>(i % 7U) - 3.0;
            for (std::size_t i = 0; i < n; ++i)
                square[i] = (i / period) % 2U == 0U ? 32767.0 : -32768.0;
            expectPlainBits(sparse);
            expectPlainBits(square);
        }
        for (double all : {0.0, -0.0, 1.0}) expectPlainBits(Values(n, all));
        for (std::size_t at = 0; at < n; at += n / 16 + 1) {
            Values impulse(n, 0.0);
            impulse[at] = 5.0;
            expectPlainBits(impulse);
        }
    }
}

TEST_F(RealSpectrumTest, ValuesAtTheEndsOfTheRangeGiveTheBitsOfTheComplexTransform) {
    using Limits = std::numeric_limits<double>;
    prepare(256);
    std::mt19937 random(4);
    for (double scale : {Limits::denorm_min(), Limits::min(), 1e-300, 1e-160, 1e-150, 1e150}) {
        Values values(256);
        for (double& v : values) v = scale * static_cast<double>(random() % 100U);
        expectPlainBits(values);
    }
}

// A cosine of 32 periods and amplitude 2 puts 1 into bin 32; a mean of 3 puts 3 into bin 0.
TEST_F(RealSpectrumTest, IsNormalisedByTheLength) {
    prepare(256);
    Values values(256);
    for (std::size_t i = 0; i < 256; ++i) {
        const double cosine[8] = {1.0, 0.5, 0.0, -0.5, -1.0, -0.5, 0.0, 0.5};
        values[i] = 3.0 + 2.0 * cosine[i % 8];
    }
    const Values power = powerOf(values);
    EXPECT_EQ(power[0], 9.0);
    // The triangle's first harmonic: (1 + 2 · 0.5 · cos 45°) / 4 · 2 = 0.8536.
    EXPECT_NEAR(power[32], 0.7286, 1e-4);
    EXPECT_EQ(power[1], 0.0);
}

TEST_F(RealSpectrumTest, WithoutMemoryItIsNotCreated) {
    sines.assign(320, 0.0);
    fft::fillSineTable(256, sines.data());
    for (int granted : {0, 1, 2, 3}) {
        const beatatlas::test::CallocFailsAfter shortage(granted);
        EXPECT_FALSE(spectrum.create(256, sines.data())) << granted;
        EXPECT_EQ(spectrum.size(), 0);
    }
    EXPECT_TRUE(spectrum.create(256, sines.data()));
    EXPECT_EQ(spectrum.size(), 256);
}

}  // namespace
