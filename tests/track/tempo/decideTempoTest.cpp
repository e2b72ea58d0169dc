// SPDX-License-Identifier: MIT
// The decision on evidence made by hand, and what a host wishes of it.
#include "track/tempo/decideTempo.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

constexpr double kSeconds = 60.0;
constexpr double kBpm = 100.0;
constexpr double kInterval = 60.0 / kBpm;

/** A drum on every beat, a chord and a bass every fourth. */
Evidence drumEvidence(const std::vector<double>& beats) {
    Evidence evidence =
        evidenceOfBars(beats, kSeconds, [](std::size_t beat) { return beat % 4 == 0; });
    evidence.onsets.sharp = onsetsAt(beats, kSeconds);
    evidence.onsets.full = evidence.onsets.sharp;
    evidence.onsets.upper = evidence.onsets.sharp;
    evidence.changes = findChordChanges(evidence.chroma);
    return evidence;
}

SessionGrid gridOf(double bpm) {
    SessionGrid grid;
    grid.bpm100 = static_cast<int>(100.0 * bpm + 0.5);
    int number = 0;
    for (const double beat : evenTimes(0.3, 60.0 / bpm, kSeconds)) {
        decltype(grid.beats)::value_type info;
        info.pos = static_cast<int>(beat * 44100.0);
        info.group = number++ % 4 + 1;
        grid.beats.push_back(info);
    }
    return grid;
}

TempoAnswer decide(const TempoWishes& wishes, double proposed = kBpm) {
    const Evidence evidence = drumEvidence(evenTimes(0.3, kInterval, kSeconds));
    return decideTempo(evidence, {gridOf(proposed), gridOf(proposed)}, 44100, wishes);
}

bool isAmong(const std::vector<double>& times, double time) {
    return std::any_of(times.begin(), times.end(),
                       [time](double other) { return std::abs(other - time) < 1e-9; });
}

void expectNumbered(const TempoAnswer& answer) {
    ASSERT_EQ(answer.bars.numbers.size(), answer.beats.size());
    for (std::size_t k = 1; k < answer.beats.size(); ++k)
        EXPECT_EQ(answer.bars.numbers[k], answer.bars.numbers[k - 1] % answer.bars.beatsPerBar + 1);
    for (const double downbeat : answer.downbeats) EXPECT_TRUE(isAmong(answer.beats, downbeat));
}

// The grids are half a beat a minute off.
TEST(TempoDecision, MakesTheProposedTempoExact) {
    const TempoAnswer answer = decide({}, 99.5);
    EXPECT_NEAR(answer.bpm, kBpm, 0.01);
    EXPECT_EQ(answer.rawBpm, answer.bpm);
    EXPECT_EQ(answer.bars.beatsPerBar, 4);
    expectNumbered(answer);
    ASSERT_EQ(answer.beats.size(), 100U);
    EXPECT_NEAR(answer.beats.front(), 0.3, 0.005);
    EXPECT_NEAR(answer.downbeats.front(), 0.3, 0.005);
}

TEST(TempoDecision, FindsNoneThatNoSessionProposes) {
    const Evidence evidence = drumEvidence(evenTimes(0.3, kInterval, kSeconds));
    const TempoAnswer answer = decideTempo(evidence, {}, 44100, {});
    EXPECT_EQ(answer.bpm, 0.0);
    EXPECT_TRUE(answer.beats.empty());
}

TEST(TempoDecision, LeavesATempoWithinTheRangeAlone) {
    const TempoAnswer plain = decide({});
    const TempoAnswer wished = decide({80.0, 160.0, 0});
    EXPECT_EQ(wished.bpm, plain.bpm);
    EXPECT_EQ(wished.beats, plain.beats);
    EXPECT_EQ(wished.bars.numbers, plain.bars.numbers);
}

TEST(TempoDecision, DoublesATempoBelowTheRange) {
    const TempoAnswer plain = decide({});
    const TempoAnswer answer = decide({150.0, 300.0, 0});
    EXPECT_DOUBLE_EQ(answer.bpm, 2.0 * plain.bpm);
    EXPECT_EQ(answer.rawBpm, plain.bpm);
    ASSERT_EQ(answer.beats.size(), 2 * plain.beats.size() - 1);
    for (std::size_t k = 0; k < plain.beats.size(); ++k)
        EXPECT_EQ(answer.beats[2 * k], plain.beats[k]);
    EXPECT_NEAR(answer.stretches.front().bpm, answer.bpm, 0.1);
    expectNumbered(answer);
}

// 100 → 800 BPM: three times.
TEST(TempoDecision, DoublesAsOftenAsItTakes) {
    const TempoAnswer answer = decide({500.0, 1000.0, 0});
    EXPECT_NEAR(answer.bpm, 800.0, 0.1);
    EXPECT_EQ(answer.beats.size(), 8 * 99 + 1U);
}

TEST(TempoDecision, HalvesATempoAboveTheRange) {
    const TempoAnswer plain = decide({});
    const TempoAnswer answer = decide({30.0, 60.0, 0});
    EXPECT_DOUBLE_EQ(answer.bpm, 0.5 * plain.bpm);
    EXPECT_EQ(answer.rawBpm, plain.bpm);
    EXPECT_EQ(answer.beats.size(), plain.beats.size() / 2);
    for (const double beat : answer.beats) EXPECT_TRUE(isAmong(plain.beats, beat));
    EXPECT_TRUE(isAmong(answer.beats, plain.downbeats.front()));
    expectNumbered(answer);
}

// 100 BPM → 25, a beat every 2.4 s: 25 of 100.
TEST(TempoDecision, HalvesAsOftenAsItTakes) {
    const TempoAnswer answer = decide({20.0, 40.0, 0});
    EXPECT_NEAR(answer.bpm, 25.0, 0.01);
    EXPECT_NEAR(static_cast<double>(answer.beats.size()), 25.0, 1.0);
    expectNumbered(answer);
}

TEST(TempoDecision, CountsTheBeatsOfABarThatTheHostKnows) {
    const TempoAnswer answer = decide({0.0, 0.0, 3});
    EXPECT_EQ(answer.bars.beatsPerBar, 3);
    expectNumbered(answer);
}

// The alternatives are readings of the music, whatever range the answer is brought into.
TEST(TempoDecision, KeepsTheReadingsOfATempoThatIsBroughtIntoARange) {
    const TempoAnswer plain = decide({});
    const TempoAnswer answer = decide({150.0, 300.0, 0});
    ASSERT_EQ(answer.alternatives.size(), plain.alternatives.size());
    for (std::size_t i = 0; i < plain.alternatives.size(); ++i)
        EXPECT_EQ(answer.alternatives[i].bpm, plain.alternatives[i].bpm);
}

// Ten seconds at 100 BPM have 16 beats, and a tempo that is halved 8: too few for bars.
TEST(TempoDecision, CountsFourFromTheFirstOfFewBeats) {
    const Evidence evidence = drumEvidence(evenTimes(0.3, kInterval, 10.0));
    Evidence brief = evidence;
    for (auto* curve : {&brief.onsets.sharp, &brief.onsets.full, &brief.onsets.upper})
        curve->resize(1500);
    brief.onsets.strength.resize(1500);
    brief.onsets.level.resize(1500);
    brief.seconds = 10.0;
    const TempoAnswer answer =
        decideTempo(brief, {gridOf(kBpm), gridOf(kBpm)}, 44100, {30.0, 60.0, 0});
    ASSERT_GE(answer.beats.size(), 7U);
    ASSERT_LT(answer.beats.size(), kLeastBeatsForBars);
    EXPECT_EQ(answer.bars.numbers.front(), 1);
    EXPECT_EQ(answer.bars.beatsPerBar, 4);
    EXPECT_EQ(answer.confidence.bars, 0.0) << "nothing is known of where they begin";
    expectNumbered(answer);
}

}  // namespace
