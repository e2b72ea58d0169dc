// SPDX-License-Identifier: MIT
// The key of a track as a host of the shared library asks for it.
#include <vector>

#include <gtest/gtest.h>

#include "key/Progressions.h"
#include "support/HostSession.h"

namespace {

using beatatlas::test::analyseTrack;
using beatatlas::test::HostSession;
using beatatlas::test::SessionRequest;
using beatatlas::test::SessionResults;
using beatatlas::test::stereoProgression;
using beatatlas::test::StereoTrack;

SessionRequest keyOnly(int rate) {
    return {.rate = rate, .sectionBeats = 0, .loud = false, .zoom = false, .key = true};
}

TEST(SessionKeyTest, FindsAllTwentyFourKeys) {
    for (int key = 0; key < 24; ++key) {
        const int rate = key % 2 == 0 ? 48000 : 44100;
        const SessionResults results =
            analyseTrack(keyOnly(rate), stereoProgression(key, rate, 8), {1000});
        EXPECT_EQ(results.mainKey, key);
        EXPECT_EQ(results.keyRanks[0], key);
        EXPECT_GT(results.keyPoints[0], results.keyPoints[1]);
    }
}

TEST(SessionKeyTest, TheCuttingIntoCallsDoesNotShow) {
    const StereoTrack track = stereoProgression(16, 44100, 2);
    const SessionResults whole = analyseTrack(keyOnly(44100), track, {track.frames()});
    EXPECT_EQ(whole.mainKey, 16);
    for (const std::vector<int>& sizes :
         {std::vector<int>{1}, {2}, {3, 5, 7}, {587}, {588}, {589}, {640}, {4096, 1}})
        EXPECT_TRUE(sameBits(analyseTrack(keyOnly(44100), track, sizes), whole)) << sizes[0];
}

// Silence at the end is no music: the pre-check leaves it out of the count.
TEST(SessionKeyTest, ASilentTailDoesNotChangeTheKey) {
    const StereoTrack track = stereoProgression(2, 48000, 6);
    StereoTrack longer = track;
    longer.left.resize(track.left.size() + 48000 * 4, 0.0F);
    longer.right.resize(longer.left.size(), 0.0F);
    const SessionResults tailed = analyseTrack(keyOnly(48000), longer, {4096});
    EXPECT_EQ(tailed.mainKey, 2);
}

TEST(SessionKeyTest, WithoutKeyDetectionTheKeyIsNeutral) {
    SessionRequest request = keyOnly(44100);
    request.key = false;
    const SessionResults results = analyseTrack(request, stereoProgression(5, 44100, 2), {4096});
    EXPECT_EQ(results.mainKey, 0);
    for (double points : results.keyPoints) EXPECT_EQ(points, 0.0);
}

}  // namespace
