// SPDX-License-Identifier: MIT
#include "key/KeyBandFilter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/truncation.h"
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

using Frames = std::vector<std::int16_t>;
using Samples = std::vector<std::int16_t>;

Frames noise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    Frames frames(2 * count);
    for (std::int16_t& sample : frames) sample = static_cast<std::int16_t>(random());
    return frames;
}

/** One sample after the other: the oracle. */
Samples filteredPlainly(KeyBandFilter& filter, const Frames& in) {
    Samples out;
    for (std::size_t i = 0; i < in.size(); i += 2)
        out.push_back(beatatlas::truncToInt16(filter.filter((in[i] + in[i + 1]) / 2.0)));
    return out;
}

/** In blocks of the given lengths, in turn, to the end. */
Samples filteredInBlocks(KeyBandFilter& filter, const Frames& in, const std::vector<int>& lengths) {
    Samples out(in.size() / 2);
    std::size_t done = 0;
    for (std::size_t block = 0; done < out.size(); ++block) {
        const auto wanted = static_cast<std::size_t>(lengths[block % lengths.size()]);
        const std::size_t n = std::min(wanted, out.size() - done);
        filter.filter(in.data() + (2 * done), out.data() + done, static_cast<int>(n));
        done += n;
    }
    return out;
}

/** Bits, with which zeros differ by their sign. */
std::vector<std::uint64_t> bitsOf(const std::vector<double>& values) {
    std::vector<std::uint64_t> bits;
    for (double v : values) bits.push_back(std::bit_cast<std::uint64_t>(v));
    return bits;
}

class KeyBandFilterTest : public beatatlas::test::RoundTowardZero {};

TEST_F(KeyBandFilterTest, AnyRateButOneUsesTheCoefficientsOfFortyEightThousand) {
    const auto at48000 = impulseResponse(48000, 500);
    for (int rate : {4000, 22050, 44099, 44101, 96000, 192000, 0, -1})
        EXPECT_EQ(impulseResponse(rate, 500), at48000) << rate;
    EXPECT_NE(impulseResponse(44100, 500), at48000);
}

// Eight Butterworth low-passes lose 3 dB each at their corner, two high-passes likewise; an octave
// off the low corner a high-pass has 0.3 dB and a mid-band tone is untouched.
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

TEST_F(KeyBandFilterTest, BlocksOfAnyLengthGiveTheSamplesOfThePlainFormInEveryForm) {
    const Frames in = noise(3000, 1);
    for (int rate : {44100, 48000}) {
        KeyBandFilter plain;
        plain.create(rate);
        const Samples expected = filteredPlainly(plain, in);
        for (auto form : beatatlas::test::formsOfThisMachine()) {
            const beatatlas::test::FormScope scope(form);
            for (int length = 1; length <= 90; ++length) {
                KeyBandFilter filter;
                filter.create(rate);
                ASSERT_EQ(filteredInBlocks(filter, in, {length}), expected)
                    << length << ' ' << beatatlas::test::nameOf(form);
            }
            KeyBandFilter filter;
            filter.create(rate);
            EXPECT_EQ(filteredInBlocks(filter, in, {1024, 1, 9, 10, 11, 587, 2, 18, 19}), expected)
                << beatatlas::test::nameOf(form);
        }
    }
}

// The impulse response from the state that a block leaves tells more than its samples, which are
// cut. After noise the sections fall silent through the smallest numbers there are.
TEST_F(KeyBandFilterTest, AfterABlockThePlainFormGoesOnWithTheSameBits) {
    for (std::size_t silence : {0U, 10U, 100U, 1000U, 1300U, 1350U, 1400U, 1500U, 40000U}) {
        Frames in = noise(100, 2);
        in.resize(in.size() + (2 * silence), 0);
        for (auto form : beatatlas::test::formsOfThisMachine()) {
            const beatatlas::test::FormScope scope(form);
            KeyBandFilter plain;
            plain.create(44100);
            filteredPlainly(plain, in);
            KeyBandFilter filter;
            filter.create(44100);
            filteredInBlocks(filter, in, {static_cast<int>(in.size() / 2)});
            EXPECT_EQ(bitsOf(impulseResponse(filter, 100)), bitsOf(impulseResponse(plain, 100)))
                << silence << ' ' << beatatlas::test::nameOf(form);
        }
    }
}

// A few seconds after the music the sections rest and are not computed; nothing may be lost when it
// goes on.
TEST_F(KeyBandFilterTest, WakesFromSilenceWithTheBitsOfThePlainForm) {
    Frames in = noise(100, 4);
    in.resize(in.size() + 300000, 0);
    const Frames more = noise(100, 5);
    in.insert(in.end(), more.begin(), more.end());
    for (int rate : {44100, 48000}) {
        KeyBandFilter plain;
        plain.create(rate);
        const Samples expected = filteredPlainly(plain, in);
        const auto after = bitsOf(impulseResponse(plain, 100));
        for (auto form : beatatlas::test::formsOfThisMachine()) {
            const beatatlas::test::FormScope scope(form);
            KeyBandFilter filter;
            filter.create(rate);
            EXPECT_EQ(filteredInBlocks(filter, in, {1024, 3, 1, 640}), expected)
                << beatatlas::test::nameOf(form);
            EXPECT_EQ(bitsOf(impulseResponse(filter, 100)), after) << beatatlas::test::nameOf(form);
        }
    }
}

// Full scale with the signs of the impulse response, the last one first: no input of 16 bits drives
// the filter further.
TEST_F(KeyBandFilterTest, TheLoudestOutputKeepsItsLowSixteenBits) {
    for (int rate : {44100, 48000}) {
        const auto response = impulseResponse(rate, 3000);
        Frames in;
        double most = 0.0;
        for (std::size_t i = response.size(); i > 0; --i) {
            in.insert(in.end(), 2, response[i - 1] < 0.0 ? std::int16_t{-32768} : 32767);
            most += std::abs(response[i - 1]);
        }
        EXPECT_NEAR(most, 2.74, 0.01);
        KeyBandFilter plain;
        plain.create(rate);
        const Samples expected = filteredPlainly(plain, in);
        EXPECT_NEAR(expected.back(), (most * 32767.5) - 65536.0, 2.0) << "not saturated";
        for (auto form : beatatlas::test::formsOfThisMachine()) {
            const beatatlas::test::FormScope scope(form);
            KeyBandFilter filter;
            filter.create(rate);
            EXPECT_EQ(filteredInBlocks(filter, in, {3000}), expected)
                << beatatlas::test::nameOf(form);
        }
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
