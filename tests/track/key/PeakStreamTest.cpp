// SPDX-License-Identifier: MIT
#include "track/key/PeakStream.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "support/signals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

PeakStream heard(int rate, const std::vector<float>& samples, std::size_t block = 16384) {
    PeakStream stream(rate);
    for (std::size_t i = 0; i < samples.size(); i += block)
        stream.put(samples.data() + i,
                   static_cast<std::int64_t>(std::min(block, samples.size() - i)));
    stream.finish();
    return stream;
}

// A frame is 4,096 × 8 samples long and begins 2,048 × 8 behind the one before.
TEST(PeakStream, HasAFrameForEveryHalfFrameButOne) {
    EXPECT_EQ(heard(44100, silence(32760)).peaks().frames(), 0U);
    EXPECT_EQ(heard(44100, silence(32768)).peaks().frames(), 1U);
    EXPECT_EQ(heard(44100, silence(32768 + 16384)).peaks().frames(), 2U);
    EXPECT_EQ(heard(44100, silence(100 * 16384)).peaks().frames(), 99U);
    EXPECT_DOUBLE_EQ(heard(44100, {}).secondsPerFrame(), 16384.0 / 44100.0);
    EXPECT_DOUBLE_EQ(heard(48000, {}).secondsPerFrame(), 16384.0 / 48000.0);
}

TEST(PeakStream, HearsANoteAtBothRates) {
    for (const int rate : {44100, 48000}) {
        const PeakStream stream = heard(rate, sine(100000, 440.0, rate, 0.5));
        ASSERT_EQ(stream.peaks().frames(), 5U);
        for (std::size_t i = 0; i < 5; ++i) {
            ASSERT_EQ(stream.peaks().peaks(i).size(), 1U);
            EXPECT_NEAR(stream.peaks().peaks(i)[0].pitch, 69.0F, 0.005F);
        }
        EXPECT_NEAR(stream.tuning(), 0.0, 0.005);
        EXPECT_NEAR(stream.peaks().loudest(), 512.0F, 80.0F);
    }
}

TEST(PeakStream, GivesTheSameBitsForBlocksOfEverySize) {
    const std::vector<float> noise = whiteNoise(300000, 0.5, 3);
    const PeakStream expected = heard(44100, noise);
    for (const std::size_t block : {1U, 13U, 300000U}) {
        const PeakStream stream = heard(44100, noise, block);
        EXPECT_EQ(stream.tuning(), expected.tuning());
        ASSERT_EQ(stream.peaks().frames(), expected.peaks().frames());
        for (std::size_t i = 0; i < stream.peaks().frames(); ++i) {
            const auto peaks = stream.peaks().peaks(i);
            const auto others = expected.peaks().peaks(i);
            ASSERT_EQ(peaks.size(), others.size());
            for (std::size_t p = 0; p < peaks.size(); ++p) {
                ASSERT_EQ(peaks[p].pitch, others[p].pitch);
                ASSERT_EQ(peaks[p].strength, others[p].strength);
            }
        }
    }
}

}  // namespace
