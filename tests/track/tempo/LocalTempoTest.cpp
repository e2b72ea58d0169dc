// SPDX-License-Identifier: MIT
#include "track/tempo/LocalTempo.h"

#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using namespace beatatlas::track::inner;

TEST(LocalTempo, StaysWhereTheTempoIsSteady) {
    const LocalTempo tempo = followTempo(onsetsAt(evenTimes(0.2, 0.5, 39.9), 40.0), 2.0);
    // 6,001 frames: windows begin at 0, 300 … below 5,401.
    ASSERT_EQ(tempo.hz.size(), 19U);
    for (const double hz : tempo.hz) EXPECT_NEAR(hz, 2.0, 0.021);
    EXPECT_GT(tempo.standing, 3.0);
}

// 120 BPM for forty seconds, then 108. Windows of eight seconds see the step within half of that.
TEST(LocalTempo, FollowsAStep) {
    std::vector<double> times = evenTimes(0.2, 60.0 / 120.0, 40.0);
    const std::vector<double> later = evenTimes(40.2, 60.0 / 108.0, 79.9);
    times.insert(times.end(), later.begin(), later.end());
    const LocalTempo tempo = followTempo(onsetsAt(times, 80.0), 2.0);
    EXPECT_NEAR(tempo.at(10.0), 2.0, 0.021);
    EXPECT_NEAR(tempo.at(35.0), 2.0, 0.021);
    EXPECT_NEAR(tempo.at(45.0), 1.8, 0.021);
    EXPECT_NEAR(tempo.at(75.0), 1.8, 0.021);
}

TEST(LocalTempo, GoesOnBeyondBothEnds) {
    const LocalTempo tempo{{2.0, 3.0}, 0.0};
    EXPECT_EQ(tempo.at(-1.0), 2.0);
    EXPECT_EQ(tempo.at(4.0), 2.0);
    EXPECT_EQ(tempo.at(5.0), 2.5);
    EXPECT_EQ(tempo.at(100.0), 3.0);
}

TEST(LocalTempo, HasOneWindowAtLeast) {
    const LocalTempo tempo = followTempo({1.0F}, 2.0);
    ASSERT_EQ(tempo.hz.size(), 1U);
    EXPECT_NEAR(tempo.hz.front(), 2.0, 1e-9);
}

TEST(LocalTempo, DoesNotStandOutOfNoise) {
    EXPECT_LT(followTempo(whiteNoise(9000, 1.0, 4), 2.0).standing, 2.3);
}

}  // namespace
