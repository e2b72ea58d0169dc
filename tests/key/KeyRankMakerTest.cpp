// SPDX-License-Identifier: MIT
#include "key/KeyRankMaker.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "key/PlainKeyRank.h"
#include "key/Progressions.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using beatatlas::KeyRankMaker;
using beatatlas::test::KeyResults;
using beatatlas::test::KeyTrack;
using beatatlas::test::PlainKeyRank;
using ::testing::Each;

KeyTrack progression(int key, int rate, int seconds) {
    return beatatlas::test::keyTrack(beatatlas::test::stereoProgression(key, rate, seconds), rate);
}

KeyResults resultsOf(const KeyRankMaker& maker) {
    KeyResults results;
    EXPECT_EQ(maker.getKeyRank(results.keys.data()), 24);
    EXPECT_EQ(maker.getKeyPoint(results.points.data()), 24);
    EXPECT_EQ(maker.getNoteEncount(results.counts.data()), 12);
    EXPECT_EQ(maker.getNoteEncountVal(results.values.data()), 12);
    EXPECT_EQ(maker.getMainKey(), results.keys[0]);
    return results;
}

class KeyRankMakerTest : public beatatlas::test::RoundTowardZero {
protected:
    void begin(const KeyTrack& track, int declared, int counted) {
        EXPECT_EQ(maker.create(track.rate, declared), 1);
        maker.setPreCheckData(counted, track.sum, track.peak, 0, 0.0, 0.0);
    }
    void feed(const KeyTrack& track, int blockFrames) {
        for (int i = 0; i < track.frames(); i += blockFrames)
            maker.putSample(track.samples.data() + 2 * static_cast<std::size_t>(i),
                            std::min(blockFrames, track.frames() - i));
    }
    KeyResults analyse(const KeyTrack& track, int blockFrames = 588) {
        begin(track, track.frames(), track.frames());
        feed(track, blockFrames);
        return resultsOf(maker);
    }
    KeyRankMaker maker;
};

TEST_F(KeyRankMakerTest, FindsAllTwentyFourKeys) {
    for (int key = 0; key < 24; ++key) {
        const KeyResults results = analyse(progression(key, key % 2 == 0 ? 44100 : 48000, 10));
        EXPECT_EQ(results.keys[0], key);
        EXPECT_GT(results.points[0], results.points[1]);
    }
}

TEST_F(KeyRankMakerTest, NoteStatisticsSpeakOfTheNotesOfTheKey) {
    const KeyResults results = analyse(progression(3, 44100, 10));
    int counted = 0;
    int inScale = 0;
    double share = 0.0;
    for (std::size_t note = 0; note < 12; ++note) {
        counted += results.counts[note];
        share += results.values[note];
        const bool ofCMajor =
            (0x5ADU >> note) % 2U != 0U;  // A, B, C, D, E, F and G: bits 0 2 3 5 7 8 10
        if (ofCMajor) inScale += results.counts[note];
    }
    EXPECT_EQ(counted, 12);
    EXPECT_GE(inScale, 10);
    EXPECT_NEAR(share, 1.0, 1e-12);
}

TEST_F(KeyRankMakerTest, RanksEachKeyOnceByFallingScores) {
    const KeyResults results = analyse(progression(13, 48000, 8));
    for (std::size_t i = 1; i < 24; ++i) EXPECT_GE(results.points[i - 1], results.points[i]);
    auto keys = results.keys;
    std::sort(keys.begin(), keys.end());
    for (int key = 0; key < 24; ++key) EXPECT_EQ(keys[static_cast<std::size_t>(key)], key);
}

TEST_F(KeyRankMakerTest, TheCuttingIntoBlocksDoesNotShow) {
    const KeyTrack track = progression(7, 44100, 4);
    const KeyResults whole = analyse(track, track.frames());
    EXPECT_GT(whole.points[0], 0.0);
    for (int block : {1, 2, 3, 587, 588, 589, 640, 4096, 16384, 18589, 20000})
        EXPECT_EQ(analyse(track, block), whole) << block;
}

// The input buffer holds back the windows of the ducking, 10 and 40 ms, and hands on 16384 frames
// at a time: of this length a single one is left before the end. The analysis frame that ends at
// 16384 + 10 × 13229 = 148674, behind 9 × 16384 = 147456, hears it.
TEST_F(KeyRankMakerTest, ASingleFrameThatWaitsIsFilteredToo) {
    KeyTrack track = progression(7, 44100, 5);
    constexpr int kFrames = 441 + 1764 + 9 * 16384 + 1;
    track.samples.resize(2 * std::size_t{kFrames});
    begin(track, kFrames, 10 * 44100);
    feed(track, 588);
    const PlainKeyRank plain(track, {kFrames, 10 * 44100});
    EXPECT_EQ(resultsOf(maker), plain.results());
}

/** A track at one rate with drums loud enough to be ducked, wide in stereo, of an uneven length. */
KeyTrack drummedTrack(int rate) {
    beatatlas::test::TrackPlan plan;
    plan.sampleRate = rate;
    plan.lengthFrames = rate * 5 + 777;
    plan.tonic = 5;
    plan.mode = beatatlas::test::KeyMode::minor;
    plan.levels.kick = 0.7;
    plan.levels.chords = 0.05;
    plan.stereoWidth = 1.0;
    return beatatlas::test::keyTrack(beatatlas::test::TrackSynth(plan).renderAll(), rate);
}

TEST_F(KeyRankMakerTest, EqualsThePlainFormBitForBit) {
    for (int rate : {44100, 48000, 22050, 96000}) {
        const KeyTrack track = drummedTrack(rate);
        const PlainKeyRank plain(track, {track.frames(), track.frames()});
        ASSERT_GT(plain.framesAnalysed(), 10);
        for (auto form : beatatlas::test::formsOfThisMachine()) {
            const beatatlas::test::FormScope scope(form);
            EXPECT_EQ(analyse(track), plain.results())
                << rate << ' ' << beatatlas::test::nameOf(form);
        }
    }
}

// The pre-check counts up to the last sounding frame: 3 of 5 s give 10 of 16 frames.
TEST_F(KeyRankMakerTest, EndsWithTheFramesThePreCheckCounted) {
    const KeyTrack track = drummedTrack(44100);
    begin(track, track.frames(), 3 * 44100);
    feed(track, 588);
    const PlainKeyRank plain(track, {track.frames(), 3 * 44100});
    EXPECT_EQ(plain.framesAnalysed(), 10);
    EXPECT_EQ(resultsOf(maker), plain.results());
}

// Declared 3 s, so ten rows; counted 8 s, so 26 frames, of which the five fed seconds fill 16: rows
// 10 and up read as silence though their band totals count.
TEST_F(KeyRankMakerTest, APreCheckLongerThanDeclaredReadsTheMissingRowsAsZeros) {
    const KeyTrack track = drummedTrack(44100);
    begin(track, 3 * 44100, 8 * 44100);
    maker.putSample(track.samples.data(), track.frames());
    const PlainKeyRank plain(track, {3 * 44100, 8 * 44100});
    EXPECT_EQ(plain.framesAnalysed(), 16);
    EXPECT_EQ(resultsOf(maker), plain.results());
}

// All that comes with the completing block is heard.
TEST_F(KeyRankMakerTest, FramesBeyondTheDeclaredLengthInTheCompletingBlockAreHeard) {
    const KeyTrack track = drummedTrack(44100);
    const int declared = 4 * 44100;
    begin(track, declared, track.frames());
    maker.putSample(track.samples.data(), declared - 1);
    maker.putSample(track.samples.data() + 2 * (declared - 1), track.frames() - declared + 1);
    const PlainKeyRank plain(track, {declared, track.frames()});
    EXPECT_EQ(resultsOf(maker), plain.results());
}

TEST_F(KeyRankMakerTest, NothingIsHeardAfterTheAnalysis) {
    const KeyTrack track = progression(9, 44100, 4);
    const KeyResults results = analyse(track);
    feed(progression(2, 44100, 4), 588);
    EXPECT_EQ(resultsOf(maker), results);
}

// 10 s at 44,100: 441000 / 4 = 110250, over 11025 = 10 s, over 0.3 = 33.3.
TEST_F(KeyRankMakerTest, PreCheckTellsTheAnalysisFramesToCome) {
    maker.create(44100, 1);
    EXPECT_EQ(maker.setPreCheckData(441000, 0.0, 0.0, 0, 0.0, 0.0), 33);
    EXPECT_EQ(maker.setPreCheckData(440999, 0.0, 0.0, 0, 0.0, 0.0), 30) << "whole seconds";
    EXPECT_EQ(maker.setPreCheckData(44100, 0.0, 0.0, 0, 0.0, 0.0), 3);
    EXPECT_EQ(maker.setPreCheckData(44099, 0.0, 0.0, 0, 0.0, 0.0), 0);
    EXPECT_EQ(maker.setPreCheckData(0, 0.0, 0.0, 0, 0.0, 0.0), 0);
    EXPECT_EQ(maker.setPreCheckData(2147483647, 0.0, 0.0, 0, 0.0, 0.0), 162316) << "48695 s";
    EXPECT_LE(maker.setPreCheckData(-441000, 0.0, 0.0, 0, 0.0, 0.0), 0);
}

TEST_F(KeyRankMakerTest, PreCheckOfNothingAnalysesNothing) {
    const KeyTrack track = progression(9, 44100, 2);
    begin(track, track.frames(), 0);
    feed(track, 588);
    const KeyResults results = resultsOf(maker);
    EXPECT_THAT(results.points, Each(0.0));
    EXPECT_THAT(results.values, Each(0.0));
    EXPECT_EQ(results.keys[0], 0);
}

TEST_F(KeyRankMakerTest, SilenceRanksTheKeysInTheirOrderWithoutScores) {
    KeyTrack track;
    track.samples.assign(2 * 44100 * 3, 0);
    const KeyResults results = analyse(track);
    for (int key = 0; key < 24; ++key) EXPECT_EQ(results.keys[static_cast<std::size_t>(key)], key);
    EXPECT_THAT(results.points, Each(0.0));
    EXPECT_THAT(results.values, Each(0.0));
    EXPECT_EQ(results.counts[0], 1) << "the lowest band is listed from the start";
}

TEST_F(KeyRankMakerTest, NullOutputsOnlyReturnTheCount) {
    EXPECT_EQ(maker.getKeyRank(nullptr), 24);
    EXPECT_EQ(maker.getKeyPoint(nullptr), 24);
    EXPECT_EQ(maker.getNoteEncount(nullptr), 12);
    EXPECT_EQ(maker.getNoteEncountVal(nullptr), 12);
}

TEST_F(KeyRankMakerTest, BeforeTheAnalysisKeysStandInTheirOrder) {
    maker.create(44100, 44100);
    const KeyResults results = resultsOf(maker);
    for (int key = 0; key < 24; ++key) EXPECT_EQ(results.keys[static_cast<std::size_t>(key)], key);
    EXPECT_THAT(results.points, Each(0.0));
    EXPECT_THAT(results.counts, Each(0));
}

TEST_F(KeyRankMakerTest, IgnoresSamplesBeforeCreateAndAfterRelease) {
    const std::array<std::int16_t, 2> frame{1000, 1000};
    maker.putSample(frame.data(), 1);
    maker.create(44100, 1);
    maker.release();
    maker.release();
    maker.putSample(frame.data(), 1);
    EXPECT_EQ(maker.getMainKey(), 0);
}

TEST_F(KeyRankMakerTest, IgnoresNoFramesAndNoArray) {
    const KeyTrack track = progression(9, 44100, 3);
    const KeyResults expected = analyse(track);
    begin(track, track.frames(), track.frames());
    for (int n : {0, -1, std::numeric_limits<int>::min()}) maker.putSample(track.samples.data(), n);
    maker.putSample(nullptr, 100);
    feed(track, 4096);
    EXPECT_EQ(resultsOf(maker), expected);
}

TEST_F(KeyRankMakerTest, CreateAndResetStartOver) {
    const KeyTrack track = progression(9, 44100, 3);
    const KeyResults expected = analyse(track);
    begin(track, track.frames(), track.frames());
    maker.putSample(track.samples.data(), 30000);
    maker.reset();
    maker.setPreCheckData(track.frames(), track.sum, track.peak, 0, 0.0, 0.0);
    feed(track, 640);
    EXPECT_EQ(resultsOf(maker), expected);
    EXPECT_EQ(analyse(track), expected);
}

TEST_F(KeyRankMakerTest, TracksShorterThanAFrameHaveNoScores) {
    for (int frames : {1, 100, 2204, 2205, 2206, 16383, 16384, 44099}) {
        KeyTrack track;
        track.samples.assign(2 * static_cast<std::size_t>(frames), 5000);
        track.measureLevels();
        EXPECT_THAT(analyse(track).points, Each(0.0)) << frames;
    }
}

TEST_F(KeyRankMakerTest, AnyRateIsSafe) {
    for (int rate : {4000, 8000, 192000, 4, 3, 1, 0, -44100}) {
        KeyTrack track = drummedTrack(4000);
        track.rate = rate;
        EXPECT_GE(analyse(track).keys[0], 0) << rate;
    }
}

TEST_F(KeyRankMakerTest, FindsTheKeyAtAHundredAndNinetyTwoThousand) {
    EXPECT_EQ(analyse(progression(14, 192000, 6)).keys[0], 14);
}

TEST_F(KeyRankMakerTest, TheLongestTrackThatCanBeDeclaredIsSafe) {
    const KeyTrack track = progression(9, 44100, 2);
    begin(track, std::numeric_limits<int>::max(), std::numeric_limits<int>::max());
    feed(track, 588);
    EXPECT_EQ(maker.getMainKey(), 0);
}

// Squares and noise at full scale, in phase and out of phase, with the extreme samples.
TEST_F(KeyRankMakerTest, FullScaleInputIsSafe) {
    for (int pattern = 0; pattern < 3; ++pattern) {
        KeyTrack track;
        for (int i = 0; i < 44100 * 3; ++i) {
            const std::int16_t left = (i / 50) % 2 == 0 ? 32767 : -32768;
            const std::int16_t right = pattern == 0 ? left : pattern == 1 ? -32768 : 0;
            track.samples.insert(track.samples.end(), {left, right});
        }
        track.measureLevels();
        const KeyResults results = analyse(track);
        EXPECT_GE(results.points[0], results.points[23]);
    }
}

TEST_F(KeyRankMakerTest, OffersItsTransform) {
    std::array<double, 4> re{4.0, 0.0, 0.0, 0.0};
    std::array<double, 4> im{};
    EXPECT_EQ(maker.fft(4, re.data(), im.data()), 0);
    EXPECT_THAT(re, Each(1.0));
    EXPECT_THAT(im, Each(0.0));
}

}  // namespace
