// SPDX-License-Identifier: MIT
#include "track/key/EvidenceKey.h"

#include <algorithm>
#include <array>
#include <cfenv>
#include <cmath>
#include <cstring>

#include <gtest/gtest.h>

#include "support/TrackSynth.h"
#include "support/VectorForms.h"
#include "support/signals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

TrackPlan cadence(int key, int seconds = 12) {
    TrackPlan plan;
    plan.lengthFrames = 44100 * seconds;
    plan.tonic = key % 12;
    plan.mode = key < 12 ? KeyMode::major : KeyMode::minor;
    plan.stereoWidth = 0.6;
    return plan;
}

TrackResult keyOf(int rate, const StereoTrack& track, int block = 16384) {
    EvidenceKey key(rate);
    for (int i = 0; i < track.frames(); i += block)
        key.hear(Block{track.left.data() + i, track.right.data() + i,
                       std::min(block, track.frames() - i)});
    TrackResult result;
    result.rate = rate;
    result.frames = track.frames();
    key.addTo(result);
    return result;
}

TrackResult keyOf(const TrackPlan& plan) {
    return keyOf(plan.sampleRate, TrackSynth(plan).renderAll());
}

TrackResult keyOfMono(const std::vector<float>& samples) {
    StereoTrack track;
    track.left = track.right = samples;
    return keyOf(44100, track);
}

template <class Record>
bool sameRecords(const std::vector<Record>& a, const std::vector<Record>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(Record)) == 0;
}

void expectEqual(const TrackResult& a, const TrackResult& b) {
    EXPECT_TRUE(sameRecords(a.keys, b.keys));
    EXPECT_TRUE(sameRecords(a.keySegments, b.keySegments));
    EXPECT_EQ(a.chroma, b.chroma);
    EXPECT_EQ(a.tuningCents, b.tuningCents);
    EXPECT_EQ(a.tuningHz, b.tuningHz);
    EXPECT_EQ(a.keyConfidence, b.keyConfidence);
}

void expectKey(const TrackResult& result, int key) {
    ASSERT_EQ(result.keys.size(), 24U);
    EXPECT_EQ(result.keys[0].key, key);
}

TEST(EvidenceKey, FindsEveryKeyAndIsSureOfMost) {
    int sure = 0;
    for (int key = 0; key < 24; ++key) {
        const TrackResult result = keyOf(cadence(key));
        expectKey(result, key);
        if (result.keys[0].probability > 0.8) ++sure;
        ASSERT_EQ(result.keySegments.size(), 1U);
        EXPECT_EQ(result.keySegments[0].key, key);
        EXPECT_EQ(result.keySegments[0].from_seconds, 0.0);
        EXPECT_EQ(result.keySegments[0].to_seconds, 12.0);
    }
    EXPECT_GE(sure, 20);
}

TEST(EvidenceKey, FindsTheKeyInAnyTuningAndTellsIt) {
    for (int cents = -45; cents <= 45; cents += 5) {
        for (const int key : {3, 16}) {
            TrackPlan plan = cadence(key);
            plan.concertPitchHz = 440.0 * std::exp2(cents / 1200.0);
            const TrackResult result = keyOf(plan);
            expectKey(result, key);
            EXPECT_NEAR(result.tuningCents, cents, 2.0);
            EXPECT_NEAR(result.tuningHz, plan.concertPitchHz, 0.5);
        }
    }
}

TEST(EvidenceKey, DoesNotCareForLevelRateOrWidth) {
    TrackPlan quiet = cadence(14);
    quiet.level *= 0.1;
    TrackPlan mono = cadence(14);
    mono.stereoWidth = 0.0;
    TrackPlan other = cadence(14);
    other.sampleRate = 48000;
    other.lengthFrames = 48000 * 12;
    for (const TrackPlan& plan : {quiet, mono, other}) expectKey(keyOf(plan), 14);
}

TEST(EvidenceKey, GivesTheSameBitsForBlocksOfEverySize) {
    const StereoTrack track = TrackSynth(cadence(8)).renderAll();
    const TrackResult expected = keyOf(44100, track);
    for (const int block : {1, 587, track.frames()})
        expectEqual(keyOf(44100, track, block), expected);
}

TEST(EvidenceKey, GivesTheSameBitsInEveryVectorFormAndRoundingMode) {
    const StereoTrack track = TrackSynth(cadence(8)).renderAll();
    const TrackResult expected = keyOf(44100, track);
    for (const auto form : formsOfThisMachine()) {
        const FormScope scope(form);
        expectEqual(keyOf(44100, track), expected);
    }
    for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
        ASSERT_EQ(std::fesetround(mode), 0);
        const TrackResult got = keyOf(44100, track);
        const int left = std::fegetround();
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(left, mode);
        expectEqual(got, expected);
    }
}

TEST(EvidenceKey, TellsTheNotesAndAllKeys) {
    const TrackResult result = keyOf(cadence(3));
    ASSERT_EQ(result.chroma.size(), 12U);
    double sum = 0.0;
    for (const double note : result.chroma) sum += note;
    EXPECT_NEAR(sum, 1.0, 1e-5);
    EXPECT_GT(result.chroma[3], 0.15) << "C";
    EXPECT_LT(result.chroma[4], 0.05) << "C sharp";
    double probabilities = 0.0;
    std::array<bool, 24> isListed{};
    for (std::size_t i = 0; i < 24; ++i) {
        probabilities += result.keys[i].probability;
        isListed[static_cast<std::size_t>(result.keys[i].key)] = true;
        if (i > 0) {
            EXPECT_GE(result.keys[i - 1].score, result.keys[i].score);
        }
    }
    EXPECT_NEAR(probabilities, 1.0, 1e-12);
    EXPECT_TRUE(std::all_of(isListed.begin(), isListed.end(), [](bool is) { return is; }));
}

TEST(EvidenceKey, FindsAModulation) {
    StereoTrack track = TrackSynth(cadence(3, 48)).renderAll();
    const StereoTrack rest = TrackSynth(cadence(4, 48)).renderAll();
    track.left.insert(track.left.end(), rest.left.begin(), rest.left.end());
    track.right.insert(track.right.end(), rest.right.begin(), rest.right.end());
    const TrackResult result = keyOf(44100, track);
    ASSERT_EQ(result.keySegments.size(), 2U);
    EXPECT_EQ(result.keySegments[0].key, 3);
    EXPECT_EQ(result.keySegments[1].key, 4);
    EXPECT_NEAR(result.keySegments[1].from_seconds, 48.0, 16.0);
    EXPECT_EQ(result.keySegments[1].to_seconds, 96.0);
    EXPECT_GT(result.keySegments[0].confidence, 0.8);
}

TEST(EvidenceKey, FindsNoneWhereNothingSounds) {
    for (const auto& sound :
         {silence(200000), std::vector<float>(200000, 16000.0F), whiteNoise(200000, 0.1, 1)}) {
        const TrackResult result = keyOfMono(sound);
        EXPECT_TRUE(result.keys.empty());
        EXPECT_TRUE(result.keySegments.empty());
        EXPECT_TRUE(result.chroma.empty());
        EXPECT_EQ(result.tuningHz, 0.0);
        EXPECT_EQ(result.keyConfidence, 0.0);
    }
}

// One whole frame: 4,096 samples of an eighth of the rate.
TEST(EvidenceKey, NeedsThreeQuartersOfASecond) {
    EXPECT_TRUE(keyOfMono(whiteNoise(32760, 9000.0, 1)).keys.empty());
    EXPECT_EQ(keyOfMono(whiteNoise(32768, 9000.0, 1)).keys.size(), 24U);
}

TEST(EvidenceKey, IsNotSureOfNoise) {
    for (const std::uint64_t seed : {1U, 2U, 3U})
        EXPECT_LT(keyOfMono(whiteNoise(44100 * 20, 9000.0, seed)).keyConfidence, 0.3);
}

// A lone A says nothing of major or minor.
TEST(EvidenceKey, IsNotSureOfASingleTone) {
    const TrackResult result = keyOfMono(sine(44100 * 10, 440.0, 44100, 9000.0));
    EXPECT_EQ(result.keys[0].key % 12, 0);
    EXPECT_LT(result.keyConfidence, 0.8);
}

}  // namespace
