// SPDX-License-Identifier: MIT
// The key by evidence as a host gets it: whatever else is asked for, from any source, and from
// samples that are no numbers.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "support/signals.h"
#include "track/TrackHost.h"

namespace beatatlas::test {
namespace {

const Audio& music() {
    static const Audio audio = shortMusic(44100, 8);
    return audio;
}

bool sameKey(Found a, const Found& b) {
    a.bpm = b.bpm;
    a.beats = b.beats;
    for (int wave = 0; wave < 3; ++wave) a.waves[wave] = b.waves[wave];
    a.sessionKey = b.sessionKey;
    a.ranking = b.ranking;
    a.notes = b.notes;
    return sameBits(a, b);
}

// Eight seconds have one window: beats do not matter.
TEST(TrackKeyOptionsTest, DoesNotDependOnWhatElseIsWanted) {
    const Found expected = analyseArrays(allWanted(), music());
    ASSERT_EQ(expected.keys.size(), 24U);
    ASSERT_GE(expected.sessionKey, 0);
    for (int tempo = BA_TRACK_TEMPO_CONSTANT; tempo <= BA_TRACK_TEMPO_AUTO; ++tempo) {
        for (const int wants : {0, 1}) {
            BA_TrackOptions options = allWanted();
            options.tempo = tempo;
            options.wants_session_key = wants;
            options.wants_waves = wants;
            const Found found = analyseArrays(options, music());
            EXPECT_TRUE(sameKey(found, expected)) << tempo;
            EXPECT_EQ(found.sessionKey < 0, wants == 0);
            EXPECT_EQ(found.ranking.empty(), wants == 0);
            EXPECT_EQ(found.notes.empty(), wants == 0);
        }
    }
}

TEST(TrackKeyOptionsTest, TakesNoPassOfItsOwn) {
    for (const bool isFewestPasses : {false, true}) {
        for (int threads = 1; threads <= 2; ++threads) {
            WatchedSource source(music());
            source.isFewestPasses = isFewestPasses;
            BA_TrackOptions options = allWanted();
            options.threads = threads;
            options.wants_session_key = 0;
            const Found found = source.analyse(options);
            EXPECT_EQ(source.opens(), 1);
            EXPECT_EQ(found.keys.size(), 24U);
        }
    }
}

TEST(TrackKeyOptionsTest, IsNotThereWhenNoKeyIsWanted) {
    BA_TrackOptions options = allWanted();
    options.wants_key = 0;
    options.wants_session_key = 0;
    const Found found = analyseArrays(options, music());
    EXPECT_EQ(found.key, -1);
    EXPECT_EQ(found.keyConfidence, 0.0);
    EXPECT_EQ(found.tuningHz, 0.0);
    EXPECT_TRUE(found.keys.empty());
    EXPECT_TRUE(found.keySegments.empty());
    EXPECT_TRUE(found.chroma.empty());
    EXPECT_EQ(found.sessionKey, -1);

    options.wants_session_key = 1;
    const Found sessionKeyAlone = analyseArrays(options, music());
    EXPECT_EQ(sessionKeyAlone.key, -1);
    EXPECT_EQ(sessionKeyAlone.sessionKey, analyseArrays(allWanted(), music()).sessionKey);
}

TEST(TrackKeyOptionsTest, LastsFromTheBeginningToTheEnd) {
    const Found found = analyseArrays(allWanted(), music());
    ASSERT_EQ(found.keySegments.size(), 1U);
    EXPECT_EQ(found.keySegments[0].from_seconds, 0.0);
    EXPECT_EQ(found.keySegments[0].to_seconds, 8.0);
    EXPECT_EQ(found.keySegments[0].key, found.key);
    EXPECT_EQ(found.keySegments[0].confidence, found.keyConfidence);
}

Found keyOf(const std::vector<float>& samples) {
    BA_TrackOptions options = allWanted();
    options.tempo = BA_TRACK_TEMPO_OFF;
    return analyseArrays(options, {44100, samples, samples});
}

TEST(TrackKeyOptionsTest, TakesSamplesThatAreNoNumbersForSilenceOrFullScale) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(keyOf(std::vector<float>(100000, std::nanf(""))).key, -1);
    EXPECT_EQ(keyOf(std::vector<float>(100000, kInfinity)).key, -1);
    std::vector<float> some = music().left;
    std::vector<float> none = some;
    for (std::size_t i = 7; i < some.size(); i += 5000) {
        some[i] = std::nanf("");
        none[i] = 0.0F;
    }
    some[1] = -kInfinity;
    none[1] = -1.0F;
    EXPECT_TRUE(sameBits(keyOf(some), keyOf(none)));
}

}  // namespace
}  // namespace beatatlas::test
