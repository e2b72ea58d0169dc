// SPDX-License-Identifier: MIT
#include "catalogue/correction/corrected.h"

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace catalogue {
namespace {

using beatatlas::track::Beat;
using beatatlas::track::TrackResult;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::Pointwise;

constexpr int kRate = 1000;  // frames are milliseconds

/** Beats at these times, numbered in bars of four from the second on: 4, 1, 2, 3, 4 … */
TrackResult resultWith(const std::vector<double>& times, double bpm, double seconds) {
    TrackResult result;
    result.rate = kRate;
    result.frames = static_cast<std::int64_t>(seconds * kRate);
    result.bpm = bpm;
    for (std::size_t i = 0; i < times.size(); ++i)
        result.beats.push_back({times[i], bpm, static_cast<std::int64_t>(times[i] * kRate),
                                static_cast<int>((i + 3) % 4) + 1});
    result.judgement.emplace();
    result.judgement->rawBpm = bpm;
    result.judgement->confidence = {0.9, 0.5, 0.6, 0.7};
    result.judgement->readings = {{beatatlas::track::ReadingKind::twice, 2 * bpm, 0.25, 0.0}};
    if (!times.empty()) result.judgement->stretches = {{times.front(), times.back(), bpm}};
    return result;
}

/** 120 BPM from 0.25 s for ten seconds: twenty beats, the last at 9.75 s. */
TrackResult steady() {
    std::vector<double> times;
    for (int i = 0; i < 20; ++i) times.push_back(0.25 + 0.5 * i);
    return resultWith(times, 120.0, 10.0);
}

std::vector<double> timesOf(const TrackResult& result) {
    std::vector<double> times;
    for (const Beat& beat : result.beats) times.push_back(beat.seconds);
    return times;
}

std::vector<int> numbersOf(const TrackResult& result, std::size_t count = 1000) {
    std::vector<int> numbers;
    for (const Beat& beat : result.beats) numbers.push_back(beat.numberInBar);
    numbers.resize(std::min(count, numbers.size()));
    return numbers;
}

void expectSame(const TrackResult& one, const TrackResult& other) {
    EXPECT_EQ(one.bpm, other.bpm);
    EXPECT_EQ(timesOf(one), timesOf(other));
    EXPECT_EQ(numbersOf(one), numbersOf(other));
    for (std::size_t i = 0; i < std::min(one.beats.size(), other.beats.size()); ++i) {
        EXPECT_EQ(one.beats[i].frame, other.beats[i].frame);
        EXPECT_EQ(one.beats[i].bpm, other.beats[i].bpm);
    }
}

TEST(Corrected, PutsABeatBetweenEachTwoWhenDoubled) {
    const TrackResult doubled =
        corrected(resultWith({1.0, 1.5, 2.0, 3.0}, 120.0, 4.0), {{EditKind::twice}});
    EXPECT_THAT(timesOf(doubled), ElementsAre(1.0, 1.25, 1.5, 1.75, 2.0, 2.5, 3.0));
    // Bars keep their four beats, counted from the downbeat at 1.5 s.
    EXPECT_THAT(numbersOf(doubled), ElementsAre(3, 4, 1, 2, 3, 4, 1));
    EXPECT_EQ(doubled.bpm, 240.0);
    EXPECT_EQ(doubled.beats[0].bpm, 240.0);
    EXPECT_EQ(doubled.beats[1].frame, 1250);
}

TEST(Corrected, KeepsEverySecondBeatFromTheFirstDownbeatWhenHalved) {
    const TrackResult halved = corrected(steady(), {{EditKind::half}});
    EXPECT_EQ(halved.bpm, 60.0);
    ASSERT_EQ(halved.beats.size(), 10U);
    EXPECT_EQ(halved.beats[0].seconds, 0.75);
    EXPECT_EQ(halved.beats[1].seconds, 1.75);
    EXPECT_THAT(numbersOf(halved, 5), ElementsAre(1, 2, 3, 4, 1));
}

TEST(Corrected, LaysThreeBeatsForTwo) {
    const TrackResult result =
        corrected(resultWith({0.0, 0.6, 1.2, 1.8, 2.4}, 100.0, 3.0), {{EditKind::threeToTwo}});
    EXPECT_EQ(result.bpm, 150.0);
    // Every 0.4 s through the downbeat at 0.6 s.
    EXPECT_THAT(timesOf(result), Pointwise(DoubleNear(1e-12), {0.2, 0.6, 1.0, 1.4, 1.8, 2.2}));
    EXPECT_THAT(numbersOf(result), ElementsAre(4, 1, 2, 3, 4, 1));
}

TEST(Corrected, MovesBeatsHalfwayAndLetsThemKeepTheirNumbers) {
    const TrackResult shifted =
        corrected(resultWith({1.0, 1.5, 2.5}, 120.0, 2.9), {{EditKind::shiftHalf}});
    // The last would be at 3 s, behind the end.
    EXPECT_THAT(timesOf(shifted), ElementsAre(1.25, 2.0));
    EXPECT_THAT(numbersOf(shifted), ElementsAre(4, 1));
    EXPECT_EQ(shifted.bpm, 120.0);
}

TEST(Corrected, MovesBeatsByMillisecondsAndDropsWhatLeavesTheTrack) {
    const TrackResult track = resultWith({0.01, 0.5, 0.98}, 120.0, 1.0);
    EXPECT_THAT(timesOf(corrected(track, {{EditKind::shiftMilliseconds, -20.0}})),
                Pointwise(DoubleNear(1e-12), {0.48, 0.96}));
    EXPECT_THAT(timesOf(corrected(track, {{EditKind::shiftMilliseconds, 20.0}})),
                Pointwise(DoubleNear(1e-12), {0.03, 0.52}));
}

TEST(Corrected, CountsBarsThroughFromTheBeatNearestToTheTime) {
    const TrackResult result =
        corrected(resultWith({1.0, 1.5, 2.0, 2.5, 3.0}, 120.0, 4.0), {{EditKind::downbeat, 2.2}});
    EXPECT_THAT(numbersOf(result), ElementsAre(3, 4, 1, 2, 3));
    EXPECT_EQ(result.judgement->confidence.bars, 1.0);
    EXPECT_EQ(result.judgement->confidence.level, 0.5);
}

TEST(Corrected, LaysASteadyGridThroughTheFirstDownbeat) {
    const TrackResult result =
        corrected(resultWith({0.5, 1.1, 1.6, 2.3}, 110.0, 3.5), {{EditKind::bpm, 100.0}});
    EXPECT_EQ(result.bpm, 100.0);
    // Every 0.6 s through 1.1 s.
    EXPECT_THAT(timesOf(result), Pointwise(DoubleNear(1e-12), {0.5, 1.1, 1.7, 2.3, 2.9}));
    EXPECT_THAT(numbersOf(result), ElementsAre(4, 1, 2, 3, 4));
    EXPECT_TRUE(result.judgement->isSteady);
    EXPECT_EQ(result.judgement->stretches.size(), 1U);
}

// A tempo that varies keeps varying where the new tempo is a multiple of the old.
TEST(Corrected, KeepsTheBeatsWhereTheTempoIsAMultipleOfTheFound) {
    TrackResult varying = resultWith({1.0, 1.5, 2.1, 2.5}, 111.11, 4.0);
    varying.judgement->isSteady = false;
    const TrackResult result = corrected(varying, {{EditKind::bpm, 222.22}});
    expectSame(result, corrected(varying, {{EditKind::twice}}));
    EXPECT_FALSE(result.judgement->isSteady);
    EXPECT_EQ(timesOf(corrected(varying, {{EditKind::bpm, 111.11}})), timesOf(varying));
    EXPECT_EQ(corrected(varying, {{EditKind::bpm, 55.56}}).beats.size(), 2U);
    EXPECT_EQ(corrected(varying, {{EditKind::bpm, 55.56}}).bpm, 55.56);
}

TEST(Corrected, LaysAGridFromTheBeginningWhereNoBeatsWereFound) {
    TrackResult silent;
    silent.rate = kRate;
    silent.frames = 2 * kRate;
    const TrackResult result = corrected(silent, {{EditKind::bpm, 120.0}});
    EXPECT_THAT(timesOf(result), ElementsAre(0.0, 0.5, 1.0, 1.5));
    EXPECT_THAT(numbersOf(result), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(result.bpm, 120.0);
}

TEST(Corrected, TakesAPersonsWordForCertain) {
    const TrackResult result =
        corrected(steady(), {{EditKind::twice}, {EditKind::shiftHalf}, {EditKind::key, 7.0}});
    EXPECT_EQ(result.judgement->confidence.tempo, 1.0);
    EXPECT_EQ(result.judgement->confidence.level, 1.0);
    EXPECT_EQ(result.judgement->confidence.phase, 1.0);
    EXPECT_EQ(result.judgement->confidence.bars, 0.7);
    EXPECT_TRUE(result.judgement->readings.empty());
    EXPECT_EQ(result.judgement->rawBpm, 240.0);
    EXPECT_EQ(result.key->best(), 7);
    EXPECT_EQ(result.key->confidence, 1.0);
    ASSERT_EQ(result.key->segments.size(), 1U);
    EXPECT_EQ(result.key->segments[0].key, 7);
}

TEST(Corrected, PutsTheKeyBeforeTheOthersInTheirOrder) {
    TrackResult track = steady();
    track.key.emplace();
    for (int i = 0; i < 24; ++i) track.key->ranking[static_cast<std::size_t>(i)].key = 23 - i;
    const auto ranking = corrected(track, {{EditKind::key, 20.0}}).key->ranking;
    EXPECT_EQ(ranking[0].key, 20);
    EXPECT_EQ(ranking[1].key, 23);
    EXPECT_EQ(ranking[4].key, 19);
}

TEST(Corrected, TreatsBarsOfThreeAsTheyAre) {
    TrackResult waltz = steady();
    for (std::size_t i = 0; i < waltz.beats.size(); ++i)
        waltz.beats[i].numberInBar = static_cast<int>(i % 3) + 1;
    const TrackResult doubled = corrected(waltz, {{EditKind::twice}});
    EXPECT_THAT(numbersOf(doubled, 7), ElementsAre(1, 2, 3, 1, 2, 3, 1));
}

TEST(Corrected, IgnoresWhatDoesNotApply) {
    TrackResult none;
    none.rate = kRate;
    none.frames = kRate;
    for (const EditKind kind : {EditKind::twice, EditKind::half, EditKind::threeToTwo,
                                EditKind::shiftHalf, EditKind::downbeat}) {
        EXPECT_STREQ(refusalOf(none, {kind}), "has no beats");
        EXPECT_TRUE(corrected(none, {{kind}}).beats.empty());
    }
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Edit& edit :
         {Edit{EditKind::bpm, 19.99}, Edit{EditKind::bpm, 1000.01}, Edit{EditKind::bpm, nan},
          Edit{EditKind::key, 24.0}, Edit{EditKind::key, -1.0}, Edit{EditKind::key, nan},
          Edit{EditKind::downbeat, nan}, Edit{EditKind::downbeat, 10.0},
          Edit{EditKind::shiftMilliseconds, 10000.0}, Edit{EditKind::shiftMilliseconds, 9990.0}}) {
        EXPECT_NE(refusalOf(steady(), edit), nullptr);
        expectSame(corrected(steady(), {edit}), steady());
    }
    // 120, 240, 480, 960: a fourth doubling would go too far.
    EXPECT_EQ(corrected(steady(), std::vector<Edit>(10, {EditKind::twice})).bpm, 960.0);
}

Edit randomEdit(std::mt19937& random) {
    const auto kind = static_cast<EditKind>(random() % 8);
    const double values[] = {static_cast<double>(random() % 40000) / 40.0,
                             0,
                             0,
                             0,
                             0,
                             static_cast<double>(random() % 400) - 200.0,
                             static_cast<double>(random() % 11),
                             static_cast<double>(random() % 24)};
    return {kind, values[static_cast<std::size_t>(kind)]};
}

TEST(Corrected, GivesTheGridBackWhenEveryEditIsTakenBack) {
    const std::pair<Edit, Edit> pairs[] = {
        {{EditKind::twice}, {EditKind::half}},
        {{EditKind::half}, {EditKind::twice}},
        {{EditKind::shiftHalf}, {EditKind::shiftHalf}},
        {{EditKind::shiftMilliseconds, 30.5}, {EditKind::shiftMilliseconds, -30.5}}};
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        std::vector<Edit> edits;
        std::vector<Edit> back;
        for (unsigned i = random() % 6; i > 0; --i) {
            const auto& [edit, inverse] = pairs[random() % 4];
            edits.push_back(edit);
            back.insert(back.begin(), inverse);
        }
        edits.insert(edits.end(), back.begin(), back.end());
        expectSame(corrected(steady(), edits), steady());
    }
}

TEST(Corrected, LeavesAGridInOrderWithinTheTrackWhateverIsEdited) {
    std::mt19937 random(4);
    for (int round = 0; round < 2000; ++round) {
        std::vector<Edit> edits;
        for (unsigned i = random() % 8; i > 0; --i) edits.push_back(randomEdit(random));
        const TrackResult result = corrected(steady(), edits);
        ASSERT_TRUE(*result.bpm >= 20.0 && *result.bpm <= 1000.0);
        for (std::size_t i = 0; i < result.beats.size(); ++i) {
            const Beat& beat = result.beats[i];
            ASSERT_GE(beat.seconds, 0.0);
            ASSERT_LT(beat.seconds, result.seconds());
            ASSERT_TRUE(beat.frame >= 0 && beat.frame < result.frames);
            ASSERT_TRUE(beat.numberInBar >= 1 && beat.numberInBar <= 8);
            if (i > 0) {
                ASSERT_GT(beat.seconds, result.beats[i - 1].seconds);
            }
        }
    }
}

TEST(Edits, HaveNamesThatLeadBack) {
    for (int kind = 0; kind < 8; ++kind) {
        const auto each = static_cast<EditKind>(kind);
        EXPECT_EQ(editKindOf(editName(each)), each);
    }
    EXPECT_FALSE(editKindOf("other"));
    EXPECT_FALSE(editKindOf(""));
}

TEST(Edits, AreSimplifiedToWhatRemains) {
    EXPECT_THAT(simplified({{EditKind::key, 1.0}, {EditKind::key, 2.0}}),
                ElementsAre(Edit{EditKind::key, 2.0}));
    EXPECT_THAT(
        simplified(
            {{EditKind::twice}, {EditKind::shiftHalf}, {EditKind::shiftHalf}, {EditKind::half}}),
        ElementsAre());
    EXPECT_THAT(
        simplified({{EditKind::twice}, {EditKind::downbeat, 1.0}, {EditKind::half}}),
        ElementsAre(Edit{EditKind::twice}, Edit{EditKind::downbeat, 1.0}, Edit{EditKind::half}));
}

}  // namespace
}  // namespace catalogue
