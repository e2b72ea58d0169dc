// SPDX-License-Identifier: MIT
// Oracle: the sum over all frames that defines the transform.
#include "track/tempo/PulseSpectrum.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using beatatlas::track::inner::PulseSpectrum;

double plainMagnitude(const std::vector<float>& envelope, double hz) {
    double mean = 0.0;
    for (const float value : envelope) mean += value / static_cast<double>(envelope.size());
    std::complex<double> sum;
    for (std::size_t i = 0; i < envelope.size(); ++i)
        sum += (envelope[i] - mean) *
               std::polar(1.0, -2.0 * std::numbers::pi * hz * static_cast<double>(i) / 150.0);
    return std::abs(sum);
}

/** Beats of 123 BPM and others of 92, of which the spectrum is full of lines. */
std::vector<float> twoTempi(double seconds) {
    std::vector<double> times = evenTimes(0.3, 60.0 / 123.0, seconds - 0.1);
    const std::vector<double> others = evenTimes(0.1, 60.0 / 92.0, seconds - 0.1);
    times.insert(times.end(), others.begin(), others.end());
    return onsetsAt(times, seconds);
}

// The scale is arbitrary but one for all frequencies: that of the strongest line.
TEST(PulseSpectrum, IsTheSpectrumOfTheWholeTrack) {
    for (const double seconds : {20.0, 100.0}) {
        const std::vector<float> envelope = twoTempi(seconds);
        PulseSpectrum spectrum(envelope);
        const double line = plainMagnitude(envelope, 4.1);
        const double scale = line / spectrum.singleAt(4.1);
        for (double hz = 0.5; hz < 40.0; hz += 0.317) {
            const double expected = plainMagnitude(envelope, hz);
            EXPECT_NEAR(spectrum.singleAt(hz) * scale, expected, 0.01 * line)
                << seconds << ' ' << hz;
            EXPECT_NEAR(spectrum.at(hz) * scale, expected, 0.02 * line) << seconds << ' ' << hz;
        }
    }
}

// Lines a fiftieth of a BPM apart over ten minutes are two.
TEST(PulseSpectrum, SeesAsSharplyAsTheTrackIsLong) {
    const std::vector<float> envelope = onsetsAt(evenTimes(0.2, 0.5, 599.0), 600.0);
    PulseSpectrum spectrum(envelope);
    EXPECT_LT(spectrum.at(2.0 + 1.0 / 600.0), 0.05 * spectrum.at(2.0));
    EXPECT_GT(spectrum.at(2.0 + 0.1 / 600.0), 0.9 * spectrum.at(2.0));
}

TEST(PulseSpectrum, AddsUpTheHarmonicsOfAPulse) {
    PulseSpectrum spectrum(twoTempi(60.0));
    double sum = 0.0;
    for (const int harmonic : {1, 2, 3, 4, 6, 8}) sum += spectrum.at(harmonic * 2.05);
    EXPECT_DOUBLE_EQ(spectrum.pulse(2.05), sum);
    EXPECT_NEAR(spectrum.singlePulse(2.05), sum, 0.02 * sum);
}

TEST(PulseSpectrum, HasNothingBeyondItsReach) {
    PulseSpectrum spectrum(twoTempi(20.0));
    EXPECT_EQ(spectrum.at(60.0), 0.0);
    EXPECT_EQ(spectrum.singleAt(1e9), 0.0);
}

TEST(PulseSpectrum, IsZeroWithoutOnsets) {
    PulseSpectrum spectrum(std::vector<float>(1000, 3.0F));
    EXPECT_EQ(spectrum.at(2.0), 0.0);
    PulseSpectrum shortest(std::vector<float>(1, 3.0F));
    EXPECT_EQ(shortest.pulse(2.0), 0.0);
}

}  // namespace
