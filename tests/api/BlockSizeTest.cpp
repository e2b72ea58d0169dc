// SPDX-License-Identifier: MIT
// How a host cuts the track into calls changes nothing.
#include <gtest/gtest.h>

#include "support/HostSession.h"

namespace {

using namespace beatatlas::test;

// Bursts of noise over a low square wave, both channels their own, a little over five seconds.
StereoTrack burstyTrack(int frames) {
    StereoTrack track;
    std::uint32_t state = 1;
    for (int i = 0; i < frames; ++i) {
        state = state * 1664525U + 1013904223U;
        const auto noise = static_cast<float>(static_cast<std::int32_t>(state) / 65536);
        const float burst = i % 22050 < 3000 ? 1.0F : 0.02F;
        const float bass = i / 220 % 2 == 0 ? 6000.0F : -6000.0F;
        track.left.push_back(noise * 0.5F * burst + bass);
        track.right.push_back(noise * 0.25F * burst + bass * burst);
    }
    return track;
}

class BlockSizeTest : public ::testing::TestWithParam<int> {};

TEST_P(BlockSizeTest, GivesTheSameBitsAsTheWholeTrackInOneCall) {
    static const StereoTrack track = burstyTrack(230001);
    for (int rate : {44100, 48000}) {
        const SessionRequest request{.rate = rate, .key = true};
        static std::array<SessionResults, 2> whole;
        SessionResults& reference = whole.at(rate == 44100 ? 0 : 1);
        if (!reference.analyzed) reference = analyseTrack(request, track, {track.frames()});
        ASSERT_EQ(reference.loud.size(), 400U);
        EXPECT_TRUE(sameBits(analyseTrack(request, track, {GetParam()}), reference)) << rate;
    }
}

INSTANTIATE_TEST_SUITE_P(Frames, BlockSizeTest,
                         ::testing::Values(1, 2, 3, 587, 588, 589, 640, 4096));

TEST(MixedBlockSizeTest, CallsOfUnequalLengthGiveTheSameBits) {
    const StereoTrack track = burstyTrack(230001);
    for (SessionKind kind : {SessionKind::constant, SessionKind::varied, SessionKind::simple}) {
        const SessionRequest request{.kind = kind, .key = true};
        EXPECT_TRUE(sameBits(analyseTrack(request, track, {1, 9000, 2, 587, 13}),
                             analyseTrack(request, track, {track.frames()})));
    }
}

}  // namespace
