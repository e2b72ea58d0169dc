// SPDX-License-Identifier: MIT
// Oracle: the sum over all samples that defines the transform, in double precision.
#include "track/evidence/FrameSpectra.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

#include "support/VectorForms.h"
#include "support/signals.h"

namespace {

using namespace beatatlas::test;
using beatatlas::track::inner::FrameSpectra;
using beatatlas::track::inner::periodicHann;
using beatatlas::track::inner::symmetricHann;

constexpr int kPoints = 256;

std::complex<double> binOf(const float* samples, const std::vector<float>& window, int bin) {
    std::complex<double> sum;
    for (std::size_t i = 0; i < window.size(); ++i) {
        const double angle = -2.0 * std::numbers::pi * bin * static_cast<double>(i) / kPoints;
        sum += static_cast<double>(samples[i]) * static_cast<double>(window[i]) *
               std::polar(1.0, angle);
    }
    return sum;
}

const std::vector<float> kNoise = whiteNoise(2000, 1.0, 7);

// An odd number of frames: the last one has no partner. Frames of 200 samples in 256 points end in
// silence.
TEST(FrameSpectra, GiveEachFrameItsOwnSpectrum) {
    const std::vector<float> window = symmetricHann(200);
    FrameSpectra spectra(kPoints, window);
    const std::vector<std::ptrdiff_t> starts = {0, 77, 500, 3, 1800};
    spectra.transform(kNoise.data(), starts.data(), 5);
    std::vector<float> even(128);
    std::vector<float> odd(128);
    for (int frame = 0; frame < 5; ++frame) {
        spectra.powers(frame / 2, 128, even.data(), odd.data());
        for (int bin = 1; bin < 128; ++bin) {
            const std::complex<double> expected =
                binOf(kNoise.data() + starts[static_cast<std::size_t>(frame)], window, bin);
            const std::complex<float> got = spectra.at(frame, bin);
            ASSERT_NEAR(got.real(), expected.real(), 2e-5) << frame << ' ' << bin;
            ASSERT_NEAR(got.imag(), expected.imag(), 2e-5) << frame << ' ' << bin;
            const float power = (frame % 2 == 0 ? even : odd)[static_cast<std::size_t>(bin)];
            ASSERT_NEAR(power, std::norm(expected), 1e-4) << frame << ' ' << bin;
        }
    }
}

TEST(FrameSpectra, AreTheSameBitsInEveryVectorForm) {
    const std::vector<std::ptrdiff_t> starts = {0, 301, 602, 903, 1204};
    std::vector<std::vector<float>> found;
    for (const auto form : formsOfThisMachine()) {
        const FormScope scope(form);
        FrameSpectra spectra(kPoints, periodicHann(kPoints));
        spectra.transform(kNoise.data(), starts.data(), 5);
        std::vector<float>& powers = found.emplace_back(6 * 128);
        for (int pair = 0; pair < 3; ++pair)
            spectra.powers(pair, 128, powers.data() + pair * 256, powers.data() + pair * 256 + 128);
    }
    for (const auto& powers : found) EXPECT_EQ(powers, found.front());
}

// cos²: the copies half a window apart add up to 1 in the periodic form; the symmetric one ends on
// 0 on both sides.
TEST(FrameSpectra, KnowBothHannWindows) {
    const std::vector<float> periodic = periodicHann(64);
    for (std::size_t i = 0; i < 32; ++i) EXPECT_NEAR(periodic[i] + periodic[i + 32], 1.0F, 1e-6F);
    const std::vector<float> symmetric = symmetricHann(65);
    EXPECT_EQ(symmetric.front(), 0.0F);
    EXPECT_NEAR(symmetric.back(), 0.0F, 1e-7F);
    EXPECT_EQ(symmetric[32], 1.0F);
}

}  // namespace
