// SPDX-License-Identifier: MIT
#include "output/formats/midi/tempoMap.h"

#include <cmath>

#include <gtest/gtest.h>

namespace output {
namespace {

using beatatlas::track::Beat;

/** Beats in bars of four, from a first one on, each interval given by the number of its beat. */
template <class Interval>
std::vector<Beat> beatsFrom(double first, int count, const Interval& interval) {
    std::vector<Beat> beats;
    double seconds = first;
    for (int i = 0; i < count; ++i) {
        const double next = interval(i);
        beats.push_back({seconds, 60.0 / next, std::llround(seconds * 44100.0), i % 4 + 1});
        seconds += next;
    }
    return beats;
}

std::vector<Beat> evenBeats(double first, int count, double interval) {
    return beatsFrom(first, count, [=](int) { return interval; });
}

/** When a tick sounds, as a reader of the file adds it up. */
double secondsAt(const TempoMap& map, std::int64_t tick) {
    double microseconds = 0.0;
    for (std::size_t i = 0; i < map.tempos.size(); ++i) {
        const std::int64_t from = map.tempos[i].tick;
        if (from >= tick) break;
        const bool isLast = i + 1 == map.tempos.size();
        const std::int64_t to = isLast ? tick : std::min(tick, map.tempos[i + 1].tick);
        microseconds +=
            static_cast<double>(to - from) * map.tempos[i].microseconds / kTicksPerQuarter;
    }
    return microseconds / 1e6;
}

double worstError(const TempoMap& map, const std::vector<Beat>& beats) {
    double worst = 0.0;
    for (std::size_t i = 0; i < beats.size(); ++i)
        worst = std::max(worst, std::abs(secondsAt(map, map.clicks[i].tick) - beats[i].seconds));
    return worst;
}

// 126 BPM are 476190.476 microseconds: rounded once and for all they would be 3.6 ms late after an
// hour of 7560 beats.
TEST(tempoMap, KeepsASteadyTempoInPlaceForAnHour) {
    const auto beats = evenBeats(0.25, 7560, 60.0 / 126.0);
    const TempoMap map = layTempoMap(beats, 3600.5);
    ASSERT_EQ(map.clicks.size(), beats.size());
    EXPECT_LT(worstError(map, beats), 0.0003);
    EXPECT_NEAR(secondsAt(map, map.endTick), 3600.5, 0.001);
    // 0.476 microseconds a beat are a quarter of a millisecond after 525 beats.
    EXPECT_LT(map.tempos.size(), 7560U / 400U);
}

TEST(tempoMap, FollowsAWanderingTempoForAnHour) {
    const auto beats = beatsFrom(1.7, 7000, [](int i) {
        return 0.5 + 0.05 * std::sin(i / 50.0) + 0.004 * std::sin(i * 12.9898);
    });
    const TempoMap map = layTempoMap(beats, beats.back().seconds + 1.0);
    EXPECT_LT(worstError(map, beats), 0.001);
}

// Positions are whole frames: beats of 128.3 BPM lie up to half of 23 microseconds beside their
// place, which takes no tempo of their own.
TEST(tempoMap, TakesNoNewTempoForTheGrainOfFrames) {
    auto beats = evenBeats(0.0, 500, 60.0 / 128.3);
    for (Beat& beat : beats) beat.seconds = std::round(beat.seconds * 44100.0) / 44100.0;
    const TempoMap map = layTempoMap(beats, 240.0);
    EXPECT_LE(map.tempos.size(), 3U);
    EXPECT_LT(worstError(map, beats), 0.0003);
}

TEST(tempoMap, BeginsBarsOnDownbeats) {
    // Half a second a beat, the first at 1.5 s: three quarters of lead-in; it is the third of its
    // bar, so that five quarters go before the first downbeat: a bar of one and one of four.
    auto beats = evenBeats(1.5, 12, 0.5);
    for (std::size_t i = 0; i < beats.size(); ++i)
        beats[i].numberInBar = static_cast<int>((i + 2) % 4) + 1;
    const TempoMap map = layTempoMap(beats, 8.0);
    ASSERT_EQ(map.metres.size(), 2U);
    EXPECT_EQ(map.metres[0].tick, 0);
    EXPECT_EQ(map.metres[0].beats, 1);
    EXPECT_EQ(map.metres[1].tick, kTicksPerQuarter);
    EXPECT_EQ(map.metres[1].beats, 4);
    EXPECT_EQ(map.clicks[0].tick, 3 * kTicksPerQuarter);
    EXPECT_TRUE(map.clicks[2].isDownbeat);
    EXPECT_EQ(map.clicks[2].tick, 5 * kTicksPerQuarter);
    ASSERT_EQ(map.tempos.size(), 1U);
    EXPECT_EQ(map.tempos[0].microseconds, 500000);
}

TEST(tempoMap, TellsWhereTheMetreChanges) {
    auto beats = evenBeats(0.0, 15, 0.5);
    const int numbers[] = {1, 2, 3, 4, 1, 2, 3, 4, 1, 2, 3, 1, 2, 3, 1};
    for (std::size_t i = 0; i < beats.size(); ++i) beats[i].numberInBar = numbers[i];
    const TempoMap map = layTempoMap(beats, 8.0);
    ASSERT_EQ(map.metres.size(), 2U);
    EXPECT_EQ(map.metres[1].tick, 8 * kTicksPerQuarter);
    EXPECT_EQ(map.metres[1].beats, 3);
}

// 0.187 s are less than half a beat at 126 BPM, and about 3 of its 32nd notes: an eighth is nearest
// of the notes that halve.
TEST(tempoMap, TakesAShorterNoteForAShortLeadIn) {
    const auto beats = evenBeats(0.187, 8, 60.0 / 126.0);
    const TempoMap map = layTempoMap(beats, 5.0);
    EXPECT_EQ(map.metres[0].denominator, 8);
    EXPECT_EQ(map.clicks[0].tick, kTicksPerQuarter / 2);
    EXPECT_EQ(map.metres[1].tick, kTicksPerQuarter / 2);
    EXPECT_LT(worstError(map, beats), 0.0003);
}

TEST(tempoMap, KeepsBeatsInPlaceWhereverTheFirstOneIs) {
    for (const double first : {0.0, 0.00002, 0.001, 0.01, 0.1, 0.24, 0.26, 5.3, 700.0}) {
        const auto beats = evenBeats(first, 20, 0.5);
        const TempoMap map = layTempoMap(beats, first + 11.0);
        EXPECT_LT(worstError(map, beats), 0.0003) << first;
    }
}

// Four beats are missing in the middle: the interval is five quarters.
TEST(tempoMap, GivesMissingBeatsTheirTime) {
    auto beats = evenBeats(0.0, 20, 0.5);
    beats.erase(beats.begin() + 8, beats.begin() + 12);
    const TempoMap map = layTempoMap(beats, 10.0);
    EXPECT_EQ(map.clicks[8].tick - map.clicks[7].tick, 5 * kTicksPerQuarter);
    EXPECT_EQ(map.tempos.size(), 1U);
    EXPECT_LT(worstError(map, beats), 0.0003);
}

TEST(tempoMap, KeepsTemposWithinTheirBytes) {
    const std::vector<std::vector<Beat>> grids = {
        {{0.0, 0.0, 0, 1}, {900.0, 0.0, 0, 2}},  // a quarter of an hour between two beats
        {{5.0, 0.0, 0, 1}, {5.0, 0.0, 0, 2}},    // two at one place
        {{1000.0, 0.001, 0, 1}},                 // one beat of an absurd tempo
        {{0.5, 1e9, 0, 1}, {1.0, 1e9, 0, 2}},
    };
    for (const auto& beats : grids) {
        const TempoMap map = layTempoMap(beats, 1000.0);
        for (const TempoEvent& tempo : map.tempos) {
            EXPECT_GE(tempo.microseconds, 1);
            EXPECT_LT(tempo.microseconds, 1 << 24);
        }
        for (const MetreEvent& metre : map.metres) {
            EXPECT_GE(metre.beats, 1);
            EXPECT_LE(metre.beats, 255);
        }
        EXPECT_LT(worstError(map, beats), 0.0003);
    }
}

TEST(tempoMap, IsAUsualOneWhereThereAreNoBeats) {
    const TempoMap map = layTempoMap({}, 3.0);
    ASSERT_EQ(map.tempos.size(), 1U);
    ASSERT_EQ(map.metres.size(), 1U);
    EXPECT_TRUE(map.clicks.empty());
    EXPECT_EQ(map.endTick, 6 * kTicksPerQuarter);
}

TEST(tempoMap, LeavesOutBeatsBeforeZero) {
    const auto beats = evenBeats(-0.6, 6, 0.5);
    EXPECT_EQ(layTempoMap(beats, 3.0).clicks.size(), 4U);
}

}  // namespace
}  // namespace output
