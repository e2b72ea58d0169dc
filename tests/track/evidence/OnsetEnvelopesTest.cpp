// SPDX-License-Identifier: MIT
#include "track/evidence/OnsetEnvelopes.h"

#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "support/signals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

OnsetEnvelopes envelopesOf(const std::vector<float>& samples) {
    BandLevels levels(44100);
    levels.put(samples.data(), static_cast<std::int64_t>(samples.size()));
    levels.finish();
    return makeOnsetEnvelopes(levels);
}

double meanOf(const std::vector<float>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

/** Bursts of noise of a tenth of a second, half a second apart, the first at a quarter. */
std::vector<float> bursts(int count) {
    std::vector<float> track = silence(static_cast<std::size_t>(22050 * count));
    for (int i = 0; i < count; ++i)
        mixInto(track, whiteNoise(4410, 0.5, static_cast<std::uint64_t>(i) + 1),
                static_cast<std::size_t>(11025 + 22050 * i));
    return track;
}

TEST(OnsetEnvelopes, AverageOneAndHaveAValueAFrame) {
    const OnsetEnvelopes onsets = envelopesOf(bursts(8));
    ASSERT_EQ(onsets.sharp.size(), 601U);
    EXPECT_EQ(onsets.full.size(), 601U);
    EXPECT_EQ(onsets.strength.size(), 601U);
    EXPECT_EQ(onsets.level.size(), 601U);
    EXPECT_NEAR(meanOf(onsets.sharp), 1.0, 1e-4);
    EXPECT_NEAR(meanOf(onsets.full), 1.0, 1e-4);
}

// A burst from 0.25 + i / 2 s on, that is frame 37.5 + 75 i. The window of 1,024 samples reaches it
// 1.7 frames before.
TEST(OnsetEnvelopes, RiseWhereSoundsBegin) {
    const OnsetEnvelopes onsets = envelopesOf(bursts(8));
    for (std::size_t i = 0; i < 8; ++i) {
        const auto from = onsets.sharp.begin() + static_cast<std::ptrdiff_t>(75 * i);
        const auto peak = std::max_element(from, from + 75) - from;
        EXPECT_NEAR(static_cast<double>(peak), 37.0, 1.1) << i;
        EXPECT_GT(onsets.strength[75 * i + 37][3], 4.0F);
        EXPECT_LT(onsets.strength[75 * i + 10][3], 0.5F);
    }
}

TEST(OnsetEnvelopes, ClipTheExceptional) {
    const OnsetEnvelopes onsets = envelopesOf(bursts(8));
    for (const auto& strengths : onsets.strength)
        for (const float strength : strengths) ASSERT_LE(strength, 6.0F);
    for (const float upper : onsets.upper) ASSERT_LE(upper, 5.0F);
}

TEST(OnsetEnvelopes, AreZeroInSilence) {
    const OnsetEnvelopes onsets = envelopesOf(silence(44100));
    for (const float value : onsets.full) ASSERT_EQ(value, 0.0F);
    for (const float value : onsets.sharp) ASSERT_EQ(value, 0.0F);
}

TEST(OnsetEnvelopes, FindTheFrameOfATime) {
    const OnsetEnvelopes onsets = envelopesOf(silence(44100));
    EXPECT_EQ(onsets.frameAt(-3.0), 0U);
    EXPECT_EQ(onsets.frameAt(0.5), 75U);
    EXPECT_EQ(onsets.frameAt(0.5033), 75U);
    EXPECT_EQ(onsets.frameAt(0.5034), 76U);
    EXPECT_EQ(onsets.frameAt(99.0), 150U);
}

}  // namespace
