// SPDX-License-Identifier: MIT
#include "track/tempo/metre.h"

#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

constexpr double kSeconds = 40.0;

/** A track in which nothing begins and no chord sounds. */
Evidence emptyEvidence() {
    Evidence evidence;
    evidence.seconds = kSeconds;
    const auto frames = static_cast<std::size_t>(kSeconds * 150.0) + 1;
    evidence.onsets.sharp.assign(frames, 0.0F);
    evidence.onsets.full.assign(frames, 0.0F);
    evidence.onsets.strength.assign(frames, {});
    evidence.onsets.level.assign(frames, {});
    evidence.chroma.assign(400, Chroma{});
    evidence.changes = findChordChanges(evidence.chroma);
    return evidence;
}

void accent(Evidence& evidence, const std::vector<double>& times, float strength) {
    for (const double time : times)
        for (float& group : evidence.onsets.strength[evidence.onsets.frameAt(time)])
            group += strength;
}

std::vector<MetreReading> read(const Evidence& evidence, const BeatLine& line,
                               const std::vector<double>& sessionBeats = {}) {
    return judgeMetre({evidence, line, 120.0, sessionBeats, sessionBeats, std::nullopt});
}

const MetreReading& find(const std::vector<MetreReading>& readings, int period, int phase) {
    return *std::find_if(readings.begin(), readings.end(), [&](const MetreReading& reading) {
        return reading.period == period && reading.phase == phase;
    });
}

double featureOf(const MetreReading& reading, MetreFeature feature) {
    return reading.features[static_cast<std::size_t>(feature)];
}

const BeatLine kLine(evenTimes(0.2, 0.5, kSeconds));

// 120 BPM times 12 over the period: 240 (4 phases), 180 (4), 120 (6), 90 (4), 80 (6), 60 (12),
// 40 (6).
TEST(Metre, ReadsAllTempiThatPeopleCount) {
    const std::vector<MetreReading> readings = read(emptyEvidence(), kLine);
    EXPECT_EQ(readings.size(), 42U);
    double shares = 0.0;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        EXPECT_GE(readings[i].bpm, 40.0);
        EXPECT_LE(readings[i].bpm, 250.0);
        EXPECT_GT(readings[i].share, 0.0);
        EXPECT_LE(readings[i].score, readings[i == 0 ? 0 : i - 1].score);
        shares += readings[i].share;
    }
    EXPECT_NEAR(shares, 1.0, 1e-12);
}

TEST(Metre, PutsBeatsOnWhatIsStrong) {
    for (const int phase : {0, 3, 6, 9}) {
        Evidence evidence = emptyEvidence();
        accent(evidence, evenTimes(0.2 + phase / 24.0, 0.5, kSeconds), 4.0F);
        EXPECT_EQ(read(evidence, kLine).front().phase % 12, phase);
    }
}

// ln((4 + .05) / (0 + .05)) for the bass against half a beat later; strengths of 4 on every beat.
TEST(Metre, ComparesWhatBeginsOnAndBetweenBeats) {
    Evidence evidence = emptyEvidence();
    accent(evidence, kLine.seconds(), 4.0F);
    const MetreReading reading = find(read(evidence, kLine), 12, 0);
    EXPECT_NEAR(featureOf(reading, MetreFeature::lowAgainstHalf), std::log(4.05 / 0.05), 1e-6);
    EXPECT_NEAR(featureOf(reading, MetreFeature::lowAgainstThirds), std::log(4.05 / 0.05), 1e-6);
    EXPECT_NEAR(featureOf(reading, MetreFeature::middleAgainstQuarters), std::log(4.05 / 0.05),
                1e-6);
    EXPECT_NEAR(featureOf(reading, MetreFeature::lowMiddleOnBeat), std::log(4.05), 1e-6);
    EXPECT_NEAR(featureOf(reading, MetreFeature::middleAlternation), 0.0, 1e-9);
    EXPECT_NEAR(featureOf(reading, MetreFeature::tempo), std::log2(120.0 / 110.0), 1e-12);
}

// Every other beat begins with 4, the others with 1: ln(4.05 / 1.05) in all groups alike, so no
// backbeat.
TEST(Metre, HearsBeatsThatAlternate) {
    Evidence evidence = emptyEvidence();
    accent(evidence, kLine.seconds(), 1.0F);
    accent(evidence, evenTimes(0.2, 1.0, kSeconds), 3.0F);
    const MetreReading reading = find(read(evidence, kLine), 12, 0);
    EXPECT_NEAR(featureOf(reading, MetreFeature::middleAlternation), std::log(4.05 / 1.05), 1e-6);
    EXPECT_NEAR(featureOf(reading, MetreFeature::backbeat), 0.0, 1e-9);
}

TEST(Metre, HearsChordsChangeOnBeats) {
    Evidence evidence = emptyEvidence();
    // A new note every second, from 0.2 s on; ten frames a second.
    for (std::size_t i = 0; i < evidence.chroma.size(); ++i) {
        const std::size_t bar = (i + 8) / 10;
        evidence.chroma[i][bar * 5 % 12] = 2.0F;
    }
    evidence.changes = findChordChanges(evidence.chroma);
    const std::vector<MetreReading> readings = read(evidence, kLine);
    EXPECT_GT(featureOf(find(readings, 24, 0), MetreFeature::chordChange),
              featureOf(find(readings, 24, 12), MetreFeature::chordChange) + 1.0);
}

TEST(Metre, CountsTheSessionsBeats) {
    const std::vector<double> votes = evenTimes(0.45, 0.5, kSeconds - 0.5);
    const std::vector<MetreReading> readings = read(emptyEvidence(), kLine, votes);
    EXPECT_EQ(featureOf(find(readings, 12, 6), MetreFeature::variedVotes), 1.0);
    EXPECT_EQ(featureOf(find(readings, 12, 6), MetreFeature::simpleVotes), 1.0);
    EXPECT_EQ(featureOf(find(readings, 12, 0), MetreFeature::variedVotes), 0.0);
    EXPECT_NEAR(featureOf(find(readings, 24, 6), MetreFeature::variedVotes), 0.5, 0.02);
}

TEST(Metre, HasNothingToReadInAShortLine) {
    const BeatLine line(evenTimes(0.2, 0.5, 1.8));
    EXPECT_TRUE(read(emptyEvidence(), line).empty());
}

}  // namespace
