// SPDX-License-Identifier: MIT
#include "key/KeyBandFilter.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

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

}  // namespace
