// SPDX-License-Identifier: MIT
#include "track/tempo/steadiness.h"

#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

OnsetEnvelopes onlyOnsets(const std::vector<double>& times, double seconds) {
    OnsetEnvelopes onsets;
    onsets.sharp = onsetsAt(times, seconds);
    onsets.upper = onsets.sharp;
    return onsets;
}

TEST(Steadiness, KnowsEvenBeats) {
    const std::vector<double> beats = evenTimes(0.2, 0.5, 59.9);
    const Steadiness steadiness = judgeSteadiness(onlyOnsets(beats, 60.0), 2.0, beats, beats);
    EXPECT_GT(steadiness.coherence, 0.95);
    EXPECT_DOUBLE_EQ(steadiness.evenness, 1.0);
    EXPECT_TRUE(steadiness.isSteady);
}

// Half a minute of each of two tempi: even beats of the first one meet the second one's onsets by
// chance only.
TEST(Steadiness, KnowsAStep) {
    const std::vector<double> even = evenTimes(0.2, 0.5, 59.9);
    std::vector<double> music = evenTimes(0.2, 0.5, 30.0);
    const std::vector<double> later = evenTimes(30.2, 0.55, 59.9);
    music.insert(music.end(), later.begin(), later.end());
    const Steadiness steadiness = judgeSteadiness(onlyOnsets(music, 60.0), 2.0, even, music);
    EXPECT_LT(steadiness.evenness, 0.8);
    EXPECT_FALSE(steadiness.isSteady);
}

// Sixteenths: every fourth of them is a beat, and the phase of the fourth harmonic holds.
TEST(Steadiness, HearsCoherenceInSixteenths) {
    EXPECT_GT(coherenceOf(onsetsAt(evenTimes(0.2, 0.125, 59.9), 60.0), 2.0), 0.95);
    EXPECT_LT(coherenceOf(whiteNoise(9000, 1.0, 3), 2.0), 0.7);
    EXPECT_EQ(coherenceOf(std::vector<float>(100, 1.0F), 2.0), 0.0);
}

TEST(Steadiness, IsTakenForGrantedWhereNobodyCanFollow) {
    const std::vector<double> beats = {0.1, 0.6, 1.1};
    EXPECT_TRUE(judgeSteadiness(onlyOnsets(beats, 2.0), 2.0, beats, beats).isSteady);
}

}  // namespace
