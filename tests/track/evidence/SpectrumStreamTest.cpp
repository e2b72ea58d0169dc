// SPDX-License-Identifier: MIT
#include "track/evidence/SpectrumStream.h"

#include <complex>
#include <vector>

#include <gtest/gtest.h>

#include "support/signals.h"

namespace {

using namespace beatatlas::test;
using beatatlas::track::inner::FrameSpectra;
using beatatlas::track::inner::SpectrumStream;

/** Bin 5 of every frame of a stream that comes in blocks of one size. */
std::vector<std::complex<float>> framesOf(const std::vector<float>& samples, double step,
                                          std::int64_t frames, std::size_t block) {
    SpectrumStream stream(step);
    std::vector<std::complex<float>> bins;
    const auto take = [&](const FrameSpectra& spectra, int count) {
        for (int f = 0; f < count; ++f) bins.push_back(spectra.at(f, 5));
    };
    for (std::size_t i = 0; i < samples.size(); i += block)
        stream.put(samples.data() + i,
                   static_cast<std::int64_t>(std::min(block, samples.size() - i)), take);
    stream.finish(frames, take);
    return bins;
}

// A single sample of 1 under the middle of the window, where it weighs 1: |X| is 1 in every bin.
TEST(SpectrumStream, CentresFramesOnMultiplesOfTheStep) {
    for (const double step : {294.0, 551.25, 600.0}) {
        for (const int frame : {0, 1, 3, 40}) {
            const auto at = static_cast<std::size_t>(std::nearbyint(frame * step));
            const auto bins = framesOf(impulse(30000, at, 1.0), step, 45, 1000);
            ASSERT_GE(bins.size(), 45U);
            EXPECT_NEAR(std::abs(bins[static_cast<std::size_t>(frame)]), 1.0F, 1e-5F)
                << step << ' ' << frame;
        }
    }
}

// A click in the middle of the second frame, whatever their length.
TEST(SpectrumStream, HasFramesOfTheLengthAskedFor) {
    for (const int length : {64, 4096}) {
        const int step = length / 2;
        SpectrumStream stream(step, length);
        std::vector<float> bins;
        const auto take = [&](const FrameSpectra& spectra, int count) {
            EXPECT_EQ(spectra.points(), length);
            for (int f = 0; f < count; ++f) bins.push_back(std::abs(spectra.at(f, 5)));
        };
        const auto click =
            impulse(static_cast<std::size_t>(4 * step), static_cast<std::size_t>(step), 1.0);
        stream.put(click.data(), static_cast<std::int64_t>(click.size()), take);
        stream.finish(4, take);
        ASSERT_EQ(bins.size(), 4U);
        EXPECT_NEAR(bins[0], 0.0F, 1e-6F);
        EXPECT_NEAR(bins[1], 1.0F, 1e-5F);
        EXPECT_NEAR(bins[2], 0.0F, 1e-6F);
    }
}

TEST(SpectrumStream, DoesNotCareForTheSizeOfBlocks) {
    const std::vector<float> noise = whiteNoise(40000, 1.0, 3);
    const auto expected = framesOf(noise, 294.0, 137, 40000);
    ASSERT_EQ(expected.size(), 137U);
    for (const std::size_t block : {1U, 17U, 588U, 16384U})
        EXPECT_EQ(framesOf(noise, 294.0, 137, block), expected) << block;
}

TEST(SpectrumStream, LetsSilenceFollow) {
    const auto bins = framesOf(whiteNoise(100, 1.0, 3), 294.0, 5, 100);
    ASSERT_EQ(bins.size(), 5U);
    EXPECT_GT(std::abs(bins[0]), 0.0F);
    // The third frame begins at 588 − 512.
    EXPECT_GT(std::abs(bins[2]), 0.0F);
    EXPECT_EQ(bins[3], 0.0F);
}

}  // namespace
