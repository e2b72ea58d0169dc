// SPDX-License-Identifier: MIT
#include "support/sameResults.h"

#include <gtest/gtest.h>

#include "media/TrackDecoder.h"
#include "support/Sounds.h"

namespace test {

namespace {

using beatatlas::track::Beat;
using beatatlas::track::Key;
using beatatlas::track::SessionKey;
using beatatlas::track::TempoJudgement;
using beatatlas::track::WavePoint;

void expectSameWave(const std::vector<WavePoint>& found, const std::vector<WavePoint>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_EQ(found[i].level, expected[i].level) << i;
        ASSERT_EQ(found[i].color, expected[i].color) << i;
    }
}

void expectSameBeats(const std::vector<Beat>& found, const std::vector<Beat>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_EQ(found[i].seconds, expected[i].seconds) << i;
        ASSERT_EQ(found[i].frame, expected[i].frame) << i;
        ASSERT_EQ(found[i].bpm, expected[i].bpm) << i;
        ASSERT_EQ(found[i].numberInBar, expected[i].numberInBar) << i;
    }
}

void expectSameJudgement(const std::optional<TempoJudgement>& found,
                         const std::optional<TempoJudgement>& expected) {
    ASSERT_EQ(found.has_value(), expected.has_value());
    if (!found) return;
    EXPECT_EQ(found->isSteady, expected->isSteady);
    EXPECT_EQ(found->rawBpm, expected->rawBpm);
    EXPECT_EQ(found->confidence.tempo, expected->confidence.tempo);
    EXPECT_EQ(found->confidence.level, expected->confidence.level);
    EXPECT_EQ(found->confidence.phase, expected->confidence.phase);
    EXPECT_EQ(found->confidence.bars, expected->confidence.bars);
    ASSERT_EQ(found->stretches.size(), expected->stretches.size());
    for (std::size_t i = 0; i < found->stretches.size(); ++i) {
        EXPECT_EQ(found->stretches[i].fromSeconds, expected->stretches[i].fromSeconds) << i;
        EXPECT_EQ(found->stretches[i].toSeconds, expected->stretches[i].toSeconds) << i;
        EXPECT_EQ(found->stretches[i].bpm, expected->stretches[i].bpm) << i;
    }
    ASSERT_EQ(found->readings.size(), expected->readings.size());
    for (std::size_t i = 0; i < found->readings.size(); ++i) {
        EXPECT_EQ(found->readings[i].kind, expected->readings[i].kind) << i;
        EXPECT_EQ(found->readings[i].bpm, expected->readings[i].bpm) << i;
        EXPECT_EQ(found->readings[i].share, expected->readings[i].share) << i;
        EXPECT_EQ(found->readings[i].shiftBeats, expected->readings[i].shiftBeats) << i;
    }
}

void expectSameKey(const std::optional<Key>& found, const std::optional<Key>& expected) {
    ASSERT_EQ(found.has_value(), expected.has_value());
    if (!found) return;
    EXPECT_EQ(found->confidence, expected->confidence);
    EXPECT_EQ(found->chroma, expected->chroma);
    EXPECT_EQ(found->tuningCents, expected->tuningCents);
    EXPECT_EQ(found->segments.size(), expected->segments.size());
    for (std::size_t i = 0; i < found->ranking.size(); ++i) {
        EXPECT_EQ(found->ranking[i].key, expected->ranking[i].key) << i;
        EXPECT_EQ(found->ranking[i].score, expected->ranking[i].score) << i;
    }
}

void expectSameSessionKey(const std::optional<SessionKey>& found,
                          const std::optional<SessionKey>& expected) {
    ASSERT_EQ(found.has_value(), expected.has_value());
    if (!found) return;
    EXPECT_EQ(found->keys, expected->keys);
    EXPECT_EQ(found->scores, expected->scores);
    EXPECT_EQ(found->noteCounts, expected->noteCounts);
    EXPECT_EQ(found->noteShares, expected->noteShares);
}

}  // namespace

PlainAnalysis::PlainAnalysis(const std::string& path) {
    Recorder sound;
    media::TrackDecoder decoder(path);
    decoder.run(sound);
    beatatlas::track::Options all;
    all.wantsSessionKey = true;
    result_ = beatatlas::track::analyze(all, decoder.format().sessionRate, sound.left.data(),
                                        sound.right.data(), std::ssize(sound.left));
}

void expectSameResults(const beatatlas::track::TrackResult& found,
                       const beatatlas::track::TrackResult& expected) {
    EXPECT_EQ(found.rate, expected.rate);
    EXPECT_EQ(found.frames, expected.frames);
    EXPECT_EQ(found.bpm, expected.bpm);
    expectSameBeats(found.beats, expected.beats);
    expectSameJudgement(found.judgement, expected.judgement);
    expectSameWave(found.loudWave, expected.loudWave);
    expectSameWave(found.dotsWave, expected.dotsWave);
    expectSameWave(found.zoomWave, expected.zoomWave);
    expectSameKey(found.key, expected.key);
    expectSameSessionKey(found.sessionKey, expected.sessionKey);
}

}  // namespace test
