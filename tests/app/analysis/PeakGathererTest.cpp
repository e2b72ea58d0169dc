// SPDX-License-Identifier: MIT
#include "analysis/PeakGatherer.h"

#include <limits>

#include <gtest/gtest.h>

namespace app {
namespace {

media::StereoBlock blockOf(const std::vector<float>& left, const std::vector<float>& right) {
    media::StereoBlock block;
    block.left = left;
    block.right = right;
    return block;
}

// 0.5 is 16384 in 16 bits, -0.25 is -8192; the second pixel has the last frame alone.
TEST(PeakGatherer, KeepsTheExtremesOfEachChannel) {
    PeakGatherer gatherer(3);
    gatherer.put(blockOf({0.5F, -0.25F}, {0.0F, 0.125F}));
    gatherer.put(blockOf({0.25F, -0.5F}, {0.0625F, 0.25F}));
    const output::Peaks peaks = gatherer.finish(44100);
    EXPECT_EQ(peaks.values,
              (std::vector<std::int16_t>{-8192, 16384, 0, 4096, -16384, -16384, 8192, 8192}));
    EXPECT_EQ(peaks.pixels(), 2U);
    EXPECT_EQ(peaks.rate, 44100);
}

TEST(PeakGatherer, ClipsWhatIsTooLoudAndTakesNoNumberForSilence) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    PeakGatherer gatherer(2);
    gatherer.put(blockOf({1.5F, -kInfinity}, {kNoNumber, kNoNumber}));
    EXPECT_EQ(gatherer.finish(44100).values, (std::vector<std::int16_t>{-32768, 32767, 0, 0}));
}

TEST(PeakGatherer, DoesNotDependOnTheBlocks) {
    std::vector<float> ramp;
    for (int i = 0; i < 1000; ++i) ramp.push_back(static_cast<float>(i % 37) / 64.0F - 0.25F);
    PeakGatherer whole(16);
    whole.put(blockOf(ramp, ramp));
    PeakGatherer single(16);
    for (const float sample : ramp) single.put(blockOf({sample}, {sample}));
    EXPECT_EQ(whole.finish(48000).values, single.finish(48000).values);
}

}  // namespace
}  // namespace app
