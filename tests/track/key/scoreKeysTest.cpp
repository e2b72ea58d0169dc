// SPDX-License-Identifier: MIT
#include "track/key/scoreKeys.h"

#include <numeric>

#include <gtest/gtest.h>

#include "keyFramesOf.h"
#include "track/key/keyTemplates.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

KeyValues scoresOf(const KeyFrames& frames) {
    return scoreKeys(frames, {0, frames.size()});
}

TEST(ScoreKeys, FindsAllKeysOfCadences) {
    for (int key = 0; key < 24; ++key)
        EXPECT_EQ(bestKey(scoresOf(keyFramesOf(cadences(key, 64)))), static_cast<std::size_t>(key));
}

// The same music a tone higher scores the same in the key a tone higher, but for what the
// weights of octaves make of it.
TEST(ScoreKeys, DoesNotPreferATonic) {
    const KeyValues inA = scoresOf(keyFramesOf(cadences(0, 32)));
    const KeyValues inB = scoresOf(keyFramesOf(cadences(2, 32)));
    for (std::size_t key = 0; key < 12; ++key) {
        EXPECT_NEAR(inB[(key + 2) % 12], inA[key], 0.03) << key;
        EXPECT_NEAR(inB[12 + (key + 2) % 12], inA[12 + key], 0.03) << key;
    }
}

TEST(ScoreKeys, IsTheSumOfItsParts) {
    const KeyFrames frames = keyFramesOf({{3, false, 20}});
    const FrameRange whole{0, frames.size()};
    const KeyValues stretch = scoreStretch(frames, whole);
    const KeyValues profile = fitsOf(profileTemplates(), meanChroma(frames, whole));
    const KeyValues begin = fitsOf(triadTemplates(), meanChroma(frames, whole));
    const KeyValues all = scoreKeys(frames, whole);
    for (std::size_t key = 0; key < kKeys; ++key) {
        const double share = static_cast<double>(frames.triads[5][key]);
        EXPECT_NEAR(stretch[key], profile[key] + 0.4 * share, 1e-6);
        EXPECT_NEAR(all[key], stretch[key] + 0.1 * begin[key], 1e-9);
    }
}

// C and G by turns: what it begins with decides.
TEST(ScoreKeys, HearsWithWhichTriadItBegins) {
    std::vector<HeldChord> fromC;
    std::vector<HeldChord> fromG;
    for (int i = 0; i < 10; ++i) {
        fromC.insert(fromC.end(), {{3, false, 8}, {10, false, 8}});
        fromG.insert(fromG.end(), {{10, false, 8}, {3, false, 8}});
    }
    const KeyValues c = scoresOf(keyFramesOf(fromC));
    const KeyValues g = scoresOf(keyFramesOf(fromG));
    EXPECT_GT(c[3] - c[10], g[3] - g[10] + 0.1);
}

TEST(ScoreKeys, CountsOnlyItsFrames) {
    std::vector<HeldChord> chords = cadences(3, 32);
    const std::vector<HeldChord> more = cadences(9, 32);
    chords.insert(chords.end(), more.begin(), more.end());
    const KeyFrames frames = keyFramesOf(chords);
    EXPECT_EQ(bestKey(scoreKeys(frames, {0, 32})), 3U);
    EXPECT_EQ(bestKey(scoreKeys(frames, {32, 64})), 9U);
}

TEST(KeyProbabilities, AddUpToOneAndKeepTheOrder) {
    const KeyValues scores = scoresOf(keyFramesOf(cadences(5, 32)));
    const KeyValues probabilities = keyProbabilities(scores);
    EXPECT_NEAR(std::accumulate(probabilities.begin(), probabilities.end(), 0.0), 1.0, 1e-12);
    EXPECT_EQ(bestKey(probabilities), 5U);
    EXPECT_GT(probabilities[5], 0.8);
}

// A fourteenth more in score is e times as likely.
TEST(KeyProbabilities, GrowByEForAFourteenth) {
    KeyValues scores{};
    scores[4] = 1.0 / 14.0;
    const KeyValues probabilities = keyProbabilities(scores);
    EXPECT_NEAR(probabilities[4] / probabilities[0], 2.718281828, 1e-6);
    EXPECT_EQ(bestKey(KeyValues{}), 0U) << "of equal ones the first";
}

}  // namespace
