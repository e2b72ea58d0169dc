// SPDX-License-Identifier: MIT
#include "track/tempo/barePulse.h"

#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

constexpr double kSeconds = 30.0;
constexpr double kInterval = 0.5;
// From 0.2 s to 29.7 s, of which 59 beats are a whole interval from the next.
constexpr int kBeats = 59;

const std::vector<double> kTimes = evenTimes(0.2, kInterval, kSeconds);

/** An onset at each time, and nothing else. */
OnsetEnvelopes onsetsOf(const std::vector<double>& times) {
    OnsetEnvelopes onsets;
    onsets.full = onsetsAt(times, kSeconds);
    onsets.sharp = onsets.full;
    onsets.level.assign(onsets.full.size(), {});
    return onsets;
}

/** Raises the level of a group at every nth beat. */
void accent(OnsetEnvelopes& onsets, Group group, std::size_t every, float level) {
    for (std::size_t k = 0; k < kTimes.size(); k += every)
        onsets.level[onsets.frameAt(kTimes[k])][group] += level;
}

/** @param change  of the chords, from two seconds to the next two */
bool isBare(const OnsetEnvelopes& onsets, int period = 12, int phase = 0, double change = 0.0) {
    Evidence evidence;
    evidence.onsets = onsets;
    evidence.changes.means[ChordChanges::kTwo] = change;
    return isBarePulse(evidence, BeatLine(kTimes), period, phase, kBeats * 12 / period - 1);
}

TEST(BarePulse, IsOneSoundOnEachBeat) {
    EXPECT_TRUE(isBare(onsetsOf(kTimes)));
}

// Half of the beats of a doubled tempo lie in the silence; between those of half the tempo, and of
// 3/2 of it, lie sounds.
TEST(BarePulse, HasNoOtherTempo) {
    const OnsetEnvelopes onsets = onsetsOf(kTimes);
    for (const int period : {6, 8, 16, 24}) EXPECT_FALSE(isBare(onsets, period)) << period;
    EXPECT_FALSE(isBare(onsets, 12, 6));
}

TEST(BarePulse, IsNotSilence) {
    EXPECT_FALSE(isBare(onsetsOf({})));
}

// As long as the sound itself, in front of it and behind it.
TEST(BarePulse, MayBeginAndEndInSilence) {
    std::vector<double> times = kTimes;
    times.erase(times.begin(), times.begin() + 15);
    times.resize(times.size() - 15);
    OnsetEnvelopes onsets = onsetsOf(times);
    EXPECT_TRUE(isBare(onsets));
    accent(onsets, kLow, 2, 0.6F);
    EXPECT_FALSE(isBare(onsets)) << "kick and snare";
    onsets = onsetsOf(times);
    onsets.full[onsets.frameAt(kTimes[5] + 0.6 * kInterval)] = 0.2F;
    EXPECT_FALSE(isBare(onsets)) << "a sound before it";
}

// An arpeggio of even notes has no sound between them either.
TEST(BarePulse, HasNoChordsThatChange) {
    EXPECT_TRUE(isBare(onsetsOf(kTimes), 12, 0, 0.1));
    EXPECT_FALSE(isBare(onsetsOf(kTimes), 12, 0, 0.2));
}

// One of sixty gaps is enough: music has a note there.
TEST(BarePulse, HasNothingBetweenTheBeats) {
    OnsetEnvelopes onsets = onsetsOf(kTimes);
    const std::size_t middle = onsets.frameAt(kTimes[30] + 0.6 * kInterval);
    onsets.full[middle] = 0.09F;
    EXPECT_TRUE(isBare(onsets));
    onsets.full[middle] = 0.11F;
    EXPECT_FALSE(isBare(onsets));
}

TEST(BarePulse, MayLackABeatOfTen) {
    std::vector<double> times = kTimes;
    times.erase(times.begin() + 20, times.begin() + 24);
    EXPECT_TRUE(isBare(onsetsOf(times)));
    times.erase(times.begin() + 30, times.begin() + 34);
    EXPECT_FALSE(isBare(onsetsOf(times)));
}

TEST(BarePulse, MayHaveAccentsOnEveryThirdOrFourthBeat) {
    for (const std::size_t every : {3U, 4U}) {
        OnsetEnvelopes onsets = onsetsOf(kTimes);
        accent(onsets, kMiddle, every, 2.0F);
        EXPECT_TRUE(isBare(onsets)) << every;
    }
}

// A kick and a snare, or a beat and a weaker eighth.
TEST(BarePulse, HasNoOtherSoundOnEverySecondBeat) {
    OnsetEnvelopes onsets = onsetsOf(kTimes);
    accent(onsets, kLow, 2, 0.6F);
    EXPECT_FALSE(isBare(onsets));
}

}  // namespace
