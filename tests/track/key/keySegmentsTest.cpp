// SPDX-License-Identifier: MIT
#include "track/key/keySegments.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "keyFramesOf.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

/** Bars of four beats, half a second each: eight of them last 16 s. */
std::vector<BA_TrackBeat> beatsFrom(double seconds, int bars) {
    std::vector<BA_TrackBeat> beats;
    for (int i = 0; i < 4 * bars; ++i) beats.push_back({seconds + 0.5 * i, 120.0, 0, i % 4 + 1, 0});
    return beats;
}

using Ends = std::vector<double>;

TEST(KeyWindows, AreEightBarsLong) {
    EXPECT_EQ(keyWindows(beatsFrom(0.25, 32), 64.25), (Ends{0.0, 16.25, 32.25, 48.25, 64.25}));
    EXPECT_EQ(keyWindows(beatsFrom(0.0, 33), 66.0), (Ends{0.0, 16.0, 32.0, 48.0, 66.0}));
}

TEST(KeyWindows, AreSixteenSecondsLongWithoutBars) {
    EXPECT_EQ(keyWindows({}, 50.0), (Ends{0.0, 16.0, 32.0, 50.0}));
    EXPECT_EQ(keyWindows({}, 31.0), (Ends{0.0, 31.0}));
    EXPECT_EQ(keyWindows({}, 1.0), (Ends{0.0, 1.0}));
    EXPECT_EQ(keyWindows(beatsFrom(3.0, 8), 48.0), (Ends{0.0, 16.0, 32.0, 48.0}));
}

TEST(KeyWindows, GoOnWhereThereAreNoBeats) {
    EXPECT_EQ(keyWindows(beatsFrom(40.0, 17), 110.0),
              (Ends{0.0, 24.0, 40.0, 56.0, 72.0, 88.0, 110.0}));
}

// Beats that no music has must not make windows without end.
TEST(KeyWindows, AreASecondLongAtLeast) {
    std::vector<BA_TrackBeat> beats;
    for (int i = 0; i < 1000; ++i) beats.push_back({5.0 + 1e-9 * i, 1000.0, 0, 1, 0});
    EXPECT_EQ(keyWindows(beats, 50.0), keyWindows({}, 50.0));
}

std::vector<KeySegment> segmentsOf(const std::vector<HeldChord>& chords, double seconds) {
    const KeyFrames frames = keyFramesOf(chords);
    return findKeySegments(frames, keyWindows({}, seconds), scoreKeys(frames, {0, frames.size()}));
}

/** Cadences in several keys; two frames a second, so 32 frames are a window. */
std::vector<HeldChord> inTurn(const std::vector<std::pair<int, int>>& keysAndFrames) {
    std::vector<HeldChord> chords;
    for (const auto& [key, frames] : keysAndFrames) {
        const std::vector<HeldChord> part = cadences(key, frames);
        chords.insert(chords.end(), part.begin(), part.end());
    }
    return chords;
}

TEST(KeySegments, AreOneWithoutAChange) {
    for (const int key : {3, 12, 23}) {
        const auto segments = segmentsOf(inTurn({{key, 256}}), 128.0);
        ASSERT_EQ(segments.size(), 1U);
        EXPECT_EQ(segments[0].from, 0.0);
        EXPECT_EQ(segments[0].to, 128.0);
        EXPECT_EQ(segments[0].key, static_cast<std::size_t>(key));
        EXPECT_GT(segments[0].probabilities[segments[0].key], 0.8);
    }
}

TEST(KeySegments, ChangeWithTheKey) {
    // Up a semitone, a tone, a fourth and a fifth.
    for (const int step : {1, 2, 5, 7}) {
        const int second = (3 + step) % 12;
        const auto segments = segmentsOf(inTurn({{3, 160}, {second, 160}}), 160.0);
        ASSERT_EQ(segments.size(), 2U) << step;
        EXPECT_EQ(segments[0].key, 3U);
        EXPECT_EQ(segments[1].key, static_cast<std::size_t>(second));
        EXPECT_EQ(segments[0].to, segments[1].from);
        EXPECT_NEAR(segments[1].from, 80.0, 16.0) << "a window";
        EXPECT_EQ(segments[1].to, 160.0);
    }
}

TEST(KeySegments, LastForTwoWindowsAtLeast) {
    const auto tooShort = segmentsOf(inTurn({{3, 96}, {4, 32}, {3, 96}}), 112.0);
    EXPECT_EQ(tooShort.size(), 1U);
    const auto longEnough = segmentsOf(inTurn({{3, 96}, {4, 64}, {3, 96}}), 128.0);
    ASSERT_EQ(longEnough.size(), 3U);
    EXPECT_EQ(longEnough[1].key, 4U);
    EXPECT_EQ(longEnough[1].from, 48.0);
    EXPECT_EQ(longEnough[1].to, 80.0);
}

TEST(KeySegments, OfOneWindowAreOne) {
    const auto segments = segmentsOf(cadences(14, 16), 8.0);
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments[0].key, 14U);
}

TEST(KeySegments, StayThroughSilence) {
    const KeyFrames frames = keyFramesOf(cadences(3, 64));
    const auto segments =
        findKeySegments(frames, keyWindows({}, 200.0), scoreKeys(frames, {0, frames.size()}));
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments[0].to, 200.0);
}

}  // namespace
