// SPDX-License-Identifier: MIT
#include "track/tempo/beatFold.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "track/tempo/tempoSignals.h"

namespace {

using namespace beatatlas::test;
using beatatlas::track::inner::firstBeat;

// Many beats fall on every part of a frame: the fold is finer than a frame of 6.7 ms.
TEST(BeatFold, FindsTheFirstBeat) {
    for (const double first : {0.0, 0.1234, 0.25, 0.4321}) {
        const double interval = 60.0 / 126.7;
        const double found =
            firstBeat(onsetsAt(evenTimes(first, interval, 89.9), 90.0), 1.0 / interval);
        const double beats = (found - first) / interval;
        EXPECT_NEAR(beats, std::round(beats), 0.002 / interval) << first;
    }
}

TEST(BeatFold, PrefersBeatsThatHalfBeatsAnswer) {
    std::vector<float> onsets = onsetsAt(evenTimes(0.1, 0.25, 59.9), 60.0);
    const std::vector<float> louder = onsetsAt(evenTimes(0.1, 0.5, 59.9), 60.0);
    const std::vector<float> stray = onsetsAt(evenTimes(0.22, 0.5, 59.9), 60.0);
    for (std::size_t i = 0; i < onsets.size(); ++i) onsets[i] += louder[i] + 1.5F * stray[i];
    EXPECT_NEAR(firstBeat(onsets, 2.0), 0.1, 0.003);
}

TEST(BeatFold, IsFiniteInSilence) {
    EXPECT_NEAR(firstBeat(std::vector<float>(10), 2.0), 0.0, 0.5);
    EXPECT_NEAR(firstBeat({1.0F}, 2.0), 0.0, 0.5);
}

}  // namespace
