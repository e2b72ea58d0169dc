// SPDX-License-Identifier: MIT
#include "envelope/HalfBeatShift.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas::test {
namespace {

using HalfBeatShiftTest = RoundTowardZero;
using Indices = std::vector<int>;

// Beats of 100 values: a pulse is off beyond 25 values, the move is by 50.
constexpr float kBeat = 100.0F;
constexpr int kLead = 10;

EnvelopeGrid gridFrom(int first) {
    EnvelopeGrid grid;
    for (int i = 0; i < 5; ++i) grid.beatIndex.push_back(first + 100 * i);
    grid.beatLength.assign(5, 100.0);
    return grid;
}

bool moves(const Indices& pulses) {
    EnvelopeGrid grid = gridFrom(100);
    return shiftToPulses(grid, pulses, kLead, kBeat);
}

TEST_F(HalfBeatShiftTest, APulseIsOffBeyondAQuarterBeatAfterItsLead) {
    EXPECT_FALSE(moves({200 + kLead + 25}));
    EXPECT_TRUE(moves({200 + kLead + 26}));
    EXPECT_FALSE(moves({200 + kLead - 25}));
    EXPECT_TRUE(moves({200 + kLead - 26}));
}

TEST_F(HalfBeatShiftTest, MovesOnlyWhenMoreThanHalfOfThePulsesAreOff) {
    const int on = 200 + kLead;
    const int off = 250 + kLead;
    EXPECT_FALSE(moves({on, off}));
    EXPECT_TRUE(moves({on, off, off}));
    EXPECT_FALSE(moves({on, on, off}));
    EXPECT_FALSE(moves({on, on, off, off}));
    EXPECT_FALSE(moves({on, on, on, off, off}));
    EXPECT_TRUE(moves({on, on, off, off, off}));
}

TEST_F(HalfBeatShiftTest, WithoutPulsesTheGridStays) {
    EXPECT_FALSE(moves({}));
}

// 100 × 0.5 × 0.9 + 0.5 = 45.5 in double: from 46 on there is room for half a beat before.
TEST_F(HalfBeatShiftTest, MovesForwardWithoutRoomBeforeTheFirstBeat) {
    EnvelopeGrid near = gridFrom(45);
    EXPECT_TRUE(shiftToPulses(near, {45 + 50 + kLead}, kLead, kBeat));
    EXPECT_EQ(near.beatIndex, (Indices{95, 195, 295, 395, 495}));
    EnvelopeGrid far = gridFrom(46);
    EXPECT_TRUE(shiftToPulses(far, {46 + 50 + kLead}, kLead, kBeat));
    EXPECT_EQ(far.beatIndex, (Indices{1, 96, 196, 296, 396}));  // −4 is raised to 1
}

TEST_F(HalfBeatShiftTest, MovesBackByHalfABeatRounded) {
    EnvelopeGrid grid = gridFrom(100);
    EXPECT_TRUE(shiftToPulses(grid, {160}, kLead, 101.0F));  // 50.5 + 0.5
    EXPECT_EQ(grid.beatIndex.front(), 49);
}

TEST_F(HalfBeatShiftTest, NoMoveLeavesTheGridAsItIs) {
    EnvelopeGrid grid = gridFrom(100);
    shiftToPulses(grid, {210}, kLead, kBeat);
    EXPECT_EQ(grid.beatIndex, gridFrom(100).beatIndex);
}

TEST_F(HalfBeatShiftTest, SurvivesAbsurdLengthsAndEmptyGrids) {
    constexpr float kInf = std::numeric_limits<float>::infinity();
    for (const float beat : {0.0F, 1e38F, kInf, std::numeric_limits<float>::quiet_NaN()}) {
        EnvelopeGrid grid = gridFrom(100);
        shiftToPulses(grid, {160, 165}, kLead, beat);
        EXPECT_GE(grid.beatIndex.front(), 1);
        EnvelopeGrid none;
        EXPECT_FALSE(shiftToPulses(none, {160, 165}, kLead, beat));
    }
}

}  // namespace
}  // namespace beatatlas::test
