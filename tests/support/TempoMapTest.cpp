// SPDX-License-Identifier: MIT
#include "support/TempoMap.h"

#include <cfenv>

#include <gtest/gtest.h>

namespace beatatlas::test {
namespace {

// 120 BPM at 48,000 is 24,000 frames a beat.
TEST(TempoMap, ConstantTempoPutsBeatsEvenly) {
    const TempoMap map(48000, 1000, 120.0, {});
    EXPECT_EQ(map.frameOfBeat(0), 1000);
    EXPECT_EQ(map.frameOfBeat(1), 25000);
    EXPECT_EQ(map.frameOfBeat(2.5), 61000);
}

// 174 BPM at 44,100 is 15206.896… frames; beat 100,000 lies at 1,520,689,655.17: errors have not
// accumulated.
TEST(TempoMap, FractionalBeatLengthDoesNotDrift) {
    const TempoMap map(44100, 0, 174.0, {});
    EXPECT_EQ(map.frameOfBeat(1), 15207);
    EXPECT_EQ(map.frameOfBeat(100000), 1520689655);
}

// 120 BPM up to 2.25 s is beat 4.5 (frame 108,000). The other half of beat 4 runs at 60 BPM: 24,000
// frames.
TEST(TempoMap, ChangeWithinABeatLetsItsRestRunAtTheOtherTempo) {
    const TempoMap map(48000, 0, 120.0, {{2.25, 60.0}});
    EXPECT_EQ(map.frameOfBeat(4), 96000);
    EXPECT_EQ(map.frameOfBeat(4.5), 108000);
    EXPECT_EQ(map.frameOfBeat(5), 132000);
    EXPECT_EQ(map.frameOfBeat(6), 180000);
}

TEST(TempoMap, ChangeBeforeTheFirstBeatSetsItsTempo) {
    const TempoMap map(48000, 48000, 120.0, {{0.5, 90.0}, {1.0, 60.0}});
    EXPECT_EQ(map.frameOfBeat(0), 48000);
    EXPECT_EQ(map.frameOfBeat(1), 96000);
}

TEST(TempoMap, SeveralChangesFollowEachOther) {
    // Beats 0–3 at 60 BPM (0–4 s), two beats at 120 BPM (4–5 s), then 240 BPM.
    const TempoMap map(44100, 0, 60.0, {{4.0, 120.0}, {5.0, 240.0}});
    EXPECT_EQ(map.frameOfBeat(4), 4 * 44100);
    EXPECT_EQ(map.frameOfBeat(6), 5 * 44100);
    EXPECT_EQ(map.frameOfBeat(8), 5 * 44100 + 22050);
}

TEST(TempoMap, IsTheSameInEveryRoundingMode) {
    for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD, FE_TONEAREST}) {
        std::fesetround(mode);
        const TempoMap map(44100, 12345, 127.3, {{3.1, 89.7}, {10.7, 133.3}});
        const std::int64_t frame = map.frameOfBeat(1000.5);
        std::fesetround(FE_TONEAREST);
        // With exact fractions: 3.1 s is beat 5.98324…, 10.7 s (frame 471,870) is beat 17.34524…;
        // the remaining 983.15475… beats of 2646000 / 133.3 frames end at frame 19,987,455.02.
        EXPECT_EQ(frame, 19987455) << "mode " << mode;
    }
}

}  // namespace
}  // namespace beatatlas::test
