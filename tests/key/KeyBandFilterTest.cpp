// SPDX-License-Identifier: MIT
#include "key/KeyBandFilter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using beatatlas::KeyBandFilter;

std::vector<double> impulseResponse(KeyBandFilter& filter, int samples) {
    std::vector<double> response;
    for (int i = 0; i < samples; ++i) response.push_back(filter.filter(i == 0 ? 1.0 : 0.0));
    return response;
}

std::vector<double> impulseResponse(int rate, int samples) {
    KeyBandFilter filter;
    filter.create(rate);
    return impulseResponse(filter, samples);
}

/** Gain in dB at one frequency, from the impulse response. */
double gainAt(double hz, int rate) {
    double re = 0.0;
    double im = 0.0;
    double angle = 0.0;
    for (double h : impulseResponse(rate, rate / 4)) {
        re += h * std::cos(angle);
        im += h * std::sin(angle);
        angle += 6.283185307179586 * hz / rate;
    }
    return 20.0 * std::log10(std::hypot(re, im));
}

std::vector<double> noise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<double> samples(count);
    for (double& sample : samples)
        sample = static_cast<double>(static_cast<int>(random() % 65536U) - 32768) * 0.5;
    return samples;
}

/** One sample after the other: the oracle. */
std::vector<double> filteredPlainly(KeyBandFilter& filter, const std::vector<double>& in) {
    std::vector<double> out;
    for (double x : in) out.push_back(filter.filter(x));
    return out;
}

/** In blocks of the given lengths, in turn, to the end. */
std::vector<double> filteredInBlocks(KeyBandFilter& filter, const std::vector<double>& in,
                                     const std::vector<int>& lengths) {
    std::vector<double> out(in.size());
    std::size_t done = 0;
    for (std::size_t block = 0; done < in.size(); ++block) {
        const auto wanted = static_cast<std::size_t>(lengths[block % lengths.size()]);
        const std::size_t n = std::min(wanted, in.size() - done);
        filter.filter(in.data() + done, out.data() + done, static_cast<int>(n));
        done += n;
    }
    return out;
}

/** Bits, with which zeros differ by their sign; one NaN is as good as another. */
std::vector<std::uint64_t> bitsOf(const std::vector<double>& values) {
    std::vector<std::uint64_t> bits;
    for (double v : values) bits.push_back(std::isnan(v) ? 1U : std::bit_cast<std::uint64_t>(v));
    return bits;
}

class KeyBandFilterTest : public beatatlas::test::RoundTowardZero {};

TEST_F(KeyBandFilterTest, AnyRateButOneUsesTheCoefficientsOfFortyEightThousand) {
    const auto at48000 = impulseResponse(48000, 500);
    for (int rate : {4000, 22050, 44099, 44101, 96000, 192000, 0, -1})
        EXPECT_EQ(impulseResponse(rate, 500), at48000) << rate;
    EXPECT_NE(impulseResponse(44100, 500), at48000);
}

// Eight Butterworth low-passes lose 3 dB each at their corner, two high-passes likewise; an octave off the low
// corner a high-pass has 0.3 dB and a mid-band tone is untouched.
TEST_F(KeyBandFilterTest, KeepsTheRangeInWhichKeysAreHeard) {
    for (int rate : {44100, 48000}) {
        EXPECT_NEAR(gainAt(5512.0, rate), -24.1, 0.3) << rate;
        EXPECT_NEAR(gainAt(110.0, rate), -6.0, 0.2) << rate;
        EXPECT_NEAR(gainAt(440.0, rate), 0.0, 0.1) << rate;
        EXPECT_LT(gainAt(11025.0, rate), -100.0) << rate;
        EXPECT_LT(gainAt(20.0, rate), -55.0) << rate;
    }
}

// The first output of an impulse is the product of all b0, in the order of the sections.
TEST_F(KeyBandFilterTest, RunsEightLowPassesThenTwoHighPasses) {
    double expected = 1.0;
    for (int i = 0; i < 8; ++i) expected *= 0.09762616;
    for (int i = 0; i < 2; ++i) expected *= 0.98897751950022;
    EXPECT_EQ(impulseResponse(44100, 1)[0], expected);
    expected = 1.0;
    for (int i = 0; i < 8; ++i) expected *= 0.08493054820474352;
    for (int i = 0; i < 2; ++i) expected *= 0.9898700538456696;
    EXPECT_EQ(impulseResponse(48000, 1)[0], expected);
}

TEST_F(KeyBandFilterTest, ResetIsSilence) {
    KeyBandFilter filter;
    filter.create(44100);
    const auto fresh = impulseResponse(filter, 300);
    EXPECT_NE(impulseResponse(filter, 300), fresh) << "the tail of the first goes on";
    filter.reset();
    EXPECT_EQ(impulseResponse(filter, 300), fresh);
}

TEST_F(KeyBandFilterTest, BlocksOfAnyLengthGiveTheBitsOfThePlainFormInEveryForm) {
    const auto in = noise(3000, 1);
    for (int rate : {44100, 48000}) {
        KeyBandFilter plain;
        plain.create(rate);
        const auto expected = bitsOf(filteredPlainly(plain, in));
        for (auto form : beatatlas::test::formsOfThisMachine()) {
            const beatatlas::test::FormScope scope(form);
            for (int length = 1; length <= 40; ++length) {
                KeyBandFilter filter;
                filter.create(rate);
                ASSERT_EQ(bitsOf(filteredInBlocks(filter, in, {length})), expected)
                    << length << ' ' << beatatlas::test::nameOf(form);
            }
            KeyBandFilter filter;
            filter.create(rate);
            EXPECT_EQ(bitsOf(filteredInBlocks(filter, in, {1024, 1, 9, 10, 11, 587, 2, 18, 19})),
                      expected)
                << beatatlas::test::nameOf(form);
        }
    }
}

// A few seconds after the music the sections rest, and need not be computed; nothing may be lost when it goes on.
TEST_F(KeyBandFilterTest, WakesFromSilenceWithTheBitsOfThePlainForm) {
    std::vector<double> in = noise(500, 4);
    in.resize(150000, 0.0);
    const auto more = noise(500, 5);
    in.insert(in.end(), more.begin(), more.end());
    for (int rate : {44100, 48000}) {
        KeyBandFilter plain;
        plain.create(rate);
        const auto expected = bitsOf(filteredPlainly(plain, in));
        for (auto form : beatatlas::test::formsOfThisMachine()) {
            const beatatlas::test::FormScope scope(form);
            KeyBandFilter filter;
            filter.create(rate);
            EXPECT_EQ(bitsOf(filteredInBlocks(filter, in, {1024, 3, 1, 640})), expected)
                << beatatlas::test::nameOf(form);
        }
    }
}

TEST_F(KeyBandFilterTest, AfterABlockThePlainFormGoesOnWithTheSameState) {
    const auto first = noise(100, 2);
    const auto second = noise(100, 3);
    for (auto form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        KeyBandFilter plain;
        plain.create(44100);
        filteredPlainly(plain, first);
        KeyBandFilter filter;
        filter.create(44100);
        filteredInBlocks(filter, first, {100});
        EXPECT_EQ(bitsOf(filteredPlainly(filter, second)), bitsOf(filteredPlainly(plain, second)))
            << beatatlas::test::nameOf(form);
    }
}

// Where rounding, the sign of zero, overflow and underflow could tell the forms apart.
TEST_F(KeyBandFilterTest, SpecialValuesTravelAsInThePlainForm) {
    using Limits = std::numeric_limits<double>;
    for (double special : {-0.0, Limits::denorm_min(), 1e-300, 1e308, Limits::infinity(),
                           -Limits::infinity(), Limits::quiet_NaN()}) {
        std::vector<double> in(60, -0.0);
        in[13] = special;
        in[14] = -special;
        in[31] = 1.0;
        KeyBandFilter plain;
        plain.create(48000);
        const auto expected = bitsOf(filteredPlainly(plain, in));
        for (auto form : beatatlas::test::formsOfThisMachine()) {
            const beatatlas::test::FormScope scope(form);
            KeyBandFilter filter;
            filter.create(48000);
            EXPECT_EQ(bitsOf(filteredInBlocks(filter, in, {60})), expected)
                << special << ' ' << beatatlas::test::nameOf(form);
        }
    }
}

TEST_F(KeyBandFilterTest, FiltersInPlace) {
    auto samples = noise(500, 4);
    KeyBandFilter plain;
    plain.create(44100);
    const auto expected = filteredPlainly(plain, samples);
    for (auto form : beatatlas::test::formsOfThisMachine()) {
        const beatatlas::test::FormScope scope(form);
        auto inPlace = samples;
        KeyBandFilter filter;
        filter.create(44100);
        filter.filter(inPlace.data(), inPlace.data(), 500);
        EXPECT_EQ(bitsOf(inPlace), bitsOf(expected)) << beatatlas::test::nameOf(form);
    }
}

TEST_F(KeyBandFilterTest, AnEmptyBlockDoesNothing) {
    KeyBandFilter filter;
    filter.create(44100);
    filter.filter(nullptr, nullptr, 0);
    filter.filter(nullptr, nullptr, -1);
    EXPECT_EQ(bitsOf(impulseResponse(filter, 50)), bitsOf(impulseResponse(44100, 50)));
}

}  // namespace
