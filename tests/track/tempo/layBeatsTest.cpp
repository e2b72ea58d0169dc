// SPDX-License-Identifier: MIT
#include "track/tempo/layBeats.h"

#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

MetreReading reading(int period, int phase, double bpm) {
    return {period, phase, bpm, {}, 0.0, 0.0};
}

const std::vector<float> kFlat(3001, 1.0F);

// A line of 120 BPM from 0.2 s on. Every second of its beats, from the second one on: 0.7, 1.7
// … 19.7.
TEST(LaidBeats, AreWhereTheReadingHasThem) {
    const BeatLine line(evenTimes(0.2, 0.5, 20.0));
    const std::vector<double> beats = layBeats(kFlat, 20.0, line, reading(24, 12, 60.0), true);
    ASSERT_EQ(beats.size(), 20U);
    EXPECT_NEAR(beats.front(), 0.7, 1e-12);
    EXPECT_NEAR(beats.back(), 19.7, 1e-9);
}

TEST(LaidBeats, CoverTheTrackFromItsStart) {
    const BeatLine line(evenTimes(5.2, 0.5, 15.0));
    const std::vector<double> beats = layBeats(kFlat, 20.0, line, reading(12, 0, 120.0), true);
    EXPECT_NEAR(beats.front(), 0.2, 1e-9);
    EXPECT_NEAR(beats.back(), 19.7, 1e-9);
}

TEST(LaidBeats, BeginWithTheTrackWhenTheyAreALittleEarly) {
    const BeatLine early(evenTimes(-0.02, 0.5, 20.0));
    EXPECT_EQ(layBeats(kFlat, 20.0, early, reading(12, 0, 120.0), true).front(), 0.0);
    const BeatLine tooEarly(evenTimes(-0.04, 0.5, 20.0));
    EXPECT_NEAR(layBeats(kFlat, 20.0, tooEarly, reading(12, 0, 120.0), true).front(), 0.46, 1e-9);
}

TEST(LaidBeats, FollowALineOfChangingTempo) {
    const BeatLine line({1.0, 2.0, 2.5, 3.5});
    const std::vector<double> beats = layBeats(kFlat, 5.6, line, reading(6, 0, 120.0), false);
    EXPECT_EQ(beats,
              (std::vector<double>{0.5, 1.0, 1.5, 2.0, 2.25, 2.5, 3.0, 3.5, 4.0, 4.5, 5.0, 5.5}));
}

// The onsets come 20 ms, three frames, after the line.
TEST(LaidBeats, MoveOntoTheOnsets) {
    const std::vector<float> onsets = onsetsAt(evenTimes(0.22, 0.5, 19.9), 20.0);
    const BeatLine line(evenTimes(0.2, 0.5, 20.0));
    EXPECT_NEAR(layBeats(onsets, 20.0, line, reading(12, 0, 120.0), true).front(), 0.22, 0.002);
}

TEST(LaidBeats, StayWhereNothingSharperIsNear) {
    const std::vector<float> onsets = onsetsAt(evenTimes(0.3, 0.5, 19.9), 20.0);
    const BeatLine line(evenTimes(0.2, 0.5, 20.0));
    EXPECT_NEAR(layBeats(onsets, 20.0, line, reading(12, 0, 120.0), true).front(), 0.2, 1e-12);
}

}  // namespace
