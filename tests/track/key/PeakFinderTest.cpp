// SPDX-License-Identifier: MIT
#include "track/key/PeakFinder.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "support/signals.h"
#include "track/evidence/FrameSpectra.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

constexpr int kRate = 5512;
constexpr int kPoints = 4096;

struct Peaks {
    float top = 0.0F;
    std::vector<SpectralPeak> list;
};

Peaks peaksOf(const std::vector<float>& samples) {
    FrameSpectra spectra(kPoints, periodicHann(kPoints));
    const std::ptrdiff_t start = 0;
    spectra.transform(samples.data(), &start, 1);
    std::vector<float> powers(kPoints / 2);
    std::vector<float> odd(kPoints / 2);
    spectra.powers(0, kPoints / 2, powers.data(), odd.data());
    Peaks peaks;
    PeakFinder finder(kRate, kPoints);
    peaks.top = finder.find(powers.data(), peaks.list);
    return peaks;
}

std::vector<float> tone(double hz, double peak) {
    return sine(kPoints, hz, kRate, peak);
}

TEST(PeakFinder, CountsSemitonesFromA4) {
    EXPECT_DOUBLE_EQ(pitchOf(440.0), 69.0);
    EXPECT_DOUBLE_EQ(pitchOf(220.0), 57.0);
    EXPECT_NEAR(pitchOf(261.6256), 60.0, 1e-5);  // middle C
    EXPECT_DOUBLE_EQ(hzOfPitch(81.0), 880.0);
    EXPECT_NEAR(hzOfPitch(pitchOf(123.4)), 123.4, 1e-9);
}

// A bin is 1.35 Hz wide, at 440 Hz a twentieth of a semitone; the parabola is off by 5 % of a
// bin at most.
TEST(PeakFinder, PlacesATonesPeakBetweenTheBins) {
    for (const double hz : {110.0, 261.63, 440.3, 441.0, 880.7, 1500.2}) {
        const Peaks peaks = peaksOf(tone(hz, 0.5));
        ASSERT_FALSE(peaks.list.empty()) << hz;
        const auto& strongest = *std::max_element(
            peaks.list.begin(), peaks.list.end(),
            [](const SpectralPeak& a, const SpectralPeak& b) { return a.strength < b.strength; });
        EXPECT_NEAR(hzOfPitch(static_cast<double>(strongest.pitch)), hz, 0.07) << hz;
    }
}

// The top of the window's transform is a quarter of its length times the amplitude. A bin half a
// bin away has 0.85 of it.
TEST(PeakFinder, MeasuresAmplitudesAgainstTheLargestBin) {
    const double onBin = 327.0 * kRate / kPoints;
    std::vector<float> sound = tone(onBin, 0.5);
    mixInto(sound, tone(1.5 * onBin, 0.125));
    const Peaks peaks = peaksOf(sound);
    EXPECT_NEAR(peaks.top, 0.5 * kPoints / 4, 0.5);
    ASSERT_EQ(peaks.list.size(), 2U);
    EXPECT_NEAR(peaks.list[0].strength, 1.0, 0.001);
    EXPECT_NEAR(peaks.list[1].strength, 0.25, 0.01);
    EXPECT_LT(peaks.list[0].pitch, peaks.list[1].pitch);
}

TEST(PeakFinder, HearsNothingInSilenceAndInAConstant) {
    const Peaks silent = peaksOf(silence(kPoints));
    EXPECT_EQ(silent.top, 0.0F);
    EXPECT_TRUE(silent.list.empty());
    EXPECT_LT(peaksOf(std::vector<float>(kPoints, 1.0F)).top, 0.01F);
}

TEST(PeakFinder, DoesNotPlaceWhatNoChromaHears) {
    std::vector<float> sound = tone(440.0, 0.5);
    // Below a fiftieth, and below what shows the tuning.
    mixInto(sound, tone(660.0, 0.5 * 0.01));
    EXPECT_EQ(peaksOf(sound).list.size(), 1U);
    mixInto(sound, tone(660.0, 0.5 * 0.03));
    EXPECT_EQ(peaksOf(sound).list.size(), 2U);
}

TEST(PeakFinder, DoesNotHearBelowFortyHertz) {
    std::vector<float> sound = tone(30.0, 0.5);
    mixInto(sound, tone(440.0, 0.01));
    const Peaks peaks = peaksOf(sound);
    EXPECT_LT(peaks.top, 0.02F * kPoints / 4);
}

}  // namespace
