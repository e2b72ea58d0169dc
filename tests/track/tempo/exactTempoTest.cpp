// SPDX-License-Identifier: MIT
#include "track/tempo/exactTempo.h"

#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

PulseSpectrum spectrumOf(double bpm, double seconds) {
    return PulseSpectrum(onsetsAt(evenTimes(0.21, 60.0 / bpm, seconds - 0.1), seconds));
}

// Ninety seconds distinguish beats that differ by 1 in 90 s · 2 Hz at the first harmonic; the
// parabola divides that.
TEST(ExactTempo, FindsAHundredthOfABpm) {
    for (const double bpm : {71.37, 98.765, 123.45, 174.02}) {
        PulseSpectrum spectrum = spectrumOf(bpm, 90.0);
        const double off = bpm / 60.0 * 1.007;
        EXPECT_NEAR(60.0 * findExactTempo(spectrum, 90.0, {off}).hz, bpm, 0.01);
    }
}

TEST(ExactTempo, KeepsTheFirstProposalUnlessAnotherIsClearlyStronger) {
    PulseSpectrum spectrum = spectrumOf(120.0, 60.0);
    EXPECT_NEAR(findExactTempo(spectrum, 60.0, {2.0, 2.3}).hz, 2.0, 1e-3);
    EXPECT_NEAR(findExactTempo(spectrum, 60.0, {2.3, 2.0}).hz, 2.0, 1e-3);
}

// A proposal of three beats where the music has two: every other harmonic of it meets a line, all
// of the right one do.
TEST(ExactTempo, CorrectsThreeForTwo) {
    PulseSpectrum spectrum = spectrumOf(120.0, 60.0);
    EXPECT_NEAR(findExactTempo(spectrum, 60.0, {4.0 / 3.0}).hz, 2.0, 1e-3);
}

TEST(ExactTempo, FindsNothingWithoutProposals) {
    PulseSpectrum spectrum = spectrumOf(120.0, 60.0);
    EXPECT_EQ(findExactTempo(spectrum, 60.0, {}).hz, 0.0);
}

TEST(ExactTempo, FindsNothingWhereNothingBegins) {
    PulseSpectrum spectrum(std::vector<float>(2, 1.0F));
    EXPECT_EQ(findExactTempo(spectrum, 0.01, {2.0}).hz, 0.0);
}

TEST(ExactTempo, KeepsTheProposalOnTheShortestTracks) {
    PulseSpectrum spectrum({1.0F, 0.0F});
    EXPECT_NEAR(findExactTempo(spectrum, 0.01, {2.0}).hz, 2.0, 0.03);
}

TEST(TempoClarity, IsGreatForPulsesAndAboutOneForNoise) {
    const PulseSpectrum clear = spectrumOf(126.0, 60.0);
    EXPECT_GT(clarityOf(clear, 2.1), 10.0);
    const PulseSpectrum noise(whiteNoise(9000, 1.0, 9));
    EXPECT_LT(clarityOf(noise, 2.1), 2.0);
}

}  // namespace
