// SPDX-License-Identifier: MIT
#include "track/tempo/trackBeats.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

double distanceToNearest(double time, const std::vector<double>& times) {
    double least = 1e9;
    for (const double other : times) least = std::min(least, std::abs(other - time));
    return least;
}

/** Beats whose tempo grows evenly from 100 to 120 BPM within a minute: beat n at the time t with
 *  5/3 t + t²/360 = n. */
std::vector<double> ramp() {
    std::vector<double> times;
    for (int n = 0;; ++n) {
        const double a = 1.0 / 360.0;
        const double b = 5.0 / 3.0;
        const double time = 0.1 + (-b + std::sqrt(b * b + 4.0 * a * n)) / (2.0 * a);
        if (time > 59.9) return times;
        times.push_back(time);
    }
}

// A frame is 6.7 ms; the parabola goes between.
TEST(BeatTracking, FollowsARamp) {
    const std::vector<double> truth = ramp();
    const std::vector<float> onsets = onsetsAt(truth, 60.0);
    const std::vector<double> beats = trackBeats(onsets, followTempo(onsets, 110.0 / 60.0));
    EXPECT_NEAR(static_cast<double>(beats.size()), static_cast<double>(truth.size()), 1.0);
    for (const double beat : truth) EXPECT_LT(distanceToNearest(beat, beats), 0.005) << beat;
}

TEST(BeatTracking, BridgesGaps) {
    std::vector<double> truth = evenTimes(0.1, 0.5, 60.0);
    std::vector<double> heard = truth;
    heard.erase(heard.begin() + 50, heard.begin() + 54);
    const std::vector<double> beats = trackBeats(onsetsAt(heard, 60.0), LocalTempo{{2.0}, 0.0});
    for (const double beat : truth) EXPECT_LT(distanceToNearest(beat, beats), 0.035) << beat;
}

// The music begins five seconds late; the beats are wanted from the track's beginning.
TEST(BeatTracking, PutsBeatsBeforeTheFirstOnset) {
    const std::vector<float> onsets = onsetsAt(evenTimes(5.2, 0.5, 29.9), 30.0);
    const std::vector<double> beats = trackBeats(onsets, LocalTempo{{2.0}, 0.0});
    EXPECT_LT(beats.front(), 0.5);
    for (std::size_t k = 1; k < beats.size(); ++k)
        EXPECT_NEAR(beats[k] - beats[k - 1], 0.5, 0.1) << beats[k];
}

TEST(BeatTracking, FindsABeatInTheShortestTrack) {
    EXPECT_EQ(trackBeats({0.0F}, LocalTempo{{2.0}, 0.0}), std::vector<double>{0.0});
}

}  // namespace
