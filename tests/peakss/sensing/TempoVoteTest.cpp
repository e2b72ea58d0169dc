// SPDX-License-Identifier: MIT
#include "peakss/sensing/TempoVote.h"

#include <cfloat>
#include <limits>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using peakss::TempoVote;

constexpr float kUnsteady = 20.0F;  // ms: one vote

class TempoVoteTest : public beatatlas::test::RoundTowardZero {
protected:
    TempoVote vote_;
};

TEST_F(TempoVoteTest, HasNoWinnerBeforeTheFirstVote) {
    EXPECT_EQ(vote_.winner(), -1);
    EXPECT_EQ(vote_.votesFor(500.0F), 0);
}

// 4 / (dev + 1): 4 votes at 0 ms, 3 up to a third of a ms, 2 up to 1 ms, 1 beyond.
TEST_F(TempoVoteTest, SteadierBeatsHaveMoreVotes) {
    const auto votesOf = [](float dev) {
        TempoVote vote;
        vote.add(500.0F, dev);
        return vote.votes(120);
    };
    EXPECT_EQ(votesOf(0.0F), 4);
    EXPECT_EQ(votesOf(0.1F), 3);
    EXPECT_EQ(votesOf(0.33F), 3);
    EXPECT_EQ(votesOf(0.34F), 2);
    EXPECT_EQ(votesOf(1.0F), 2);
    EXPECT_EQ(votesOf(1.01F), 1);
    EXPECT_EQ(votesOf(3.5F), 1);
    EXPECT_EQ(votesOf(kUnsteady), 1);
    EXPECT_EQ(votesOf(FLT_MAX), 1);
    EXPECT_EQ(votesOf(std::numeric_limits<float>::quiet_NaN()), 1);
}

// 60000 / 501 = 119.76, 60000 / 499 = 120.24, 60000 / 498 = 120.48 and 60000 / 497.9 = 120.506.
TEST_F(TempoVoteTest, IntervalsVoteForTheNearestWholeBpm) {
    for (const float interval : {501.0F, 499.0F, 498.0F, 497.9F}) vote_.add(interval, kUnsteady);
    EXPECT_EQ(vote_.votes(120), 3);
    EXPECT_EQ(vote_.votes(121), 1);
}

TEST_F(TempoVoteTest, LowestOfEqualTempiWins) {
    vote_.add(400.0F, 0.0F);
    vote_.add(500.0F, 0.0F);
    EXPECT_EQ(vote_.winner(), 120);
    vote_.add(400.0F, kUnsteady);
    EXPECT_EQ(vote_.winner(), 150);
}

// Below 40 BPM and above 200 there are slots too: the range is widened by the votes themselves.
TEST_F(TempoVoteTest, TempiOutsideTheUsualRangeCanWin) {
    vote_.add(2000.0F, kUnsteady);
    EXPECT_EQ(vote_.winner(), 30);
    vote_.add(250.0F, 0.0F);
    EXPECT_EQ(vote_.winner(), 240);
}

// 60000 / 234.8 = 255.54: rounded to 256, the first slot outside. An endless interval is 0 BPM.
TEST_F(TempoVoteTest, TempiOutsideTheSlotsHaveNoVote) {
    for (const float interval :
         {234.8F, 1.0F, 0.0F, 1e-38F, -500.0F, std::numeric_limits<float>::quiet_NaN()})
        vote_.add(interval, 0.0F);
    EXPECT_EQ(vote_.winner(), -1);
    EXPECT_EQ(vote_.votesFor(1.0F), 0);
    EXPECT_EQ(vote_.votes(-1), 0);
    EXPECT_EQ(vote_.votes(256), 0);
    vote_.add(std::numeric_limits<float>::infinity(), 0.0F);
    EXPECT_EQ(vote_.winner(), 0);
    vote_.add(235.3F, 0.0F);
    EXPECT_EQ(vote_.votes(255), 4);
}

// Around 500 ms by 20 ms: 60000 / 520 = 115.4 to 60000 / 480 = 125, and the same about 60 and 240
// BPM; 1040 ms are 57.7 BPM and 240 ms 250.
TEST_F(TempoVoteTest, KeepOnlyLeavesATempoItsDoubleAndItsHalf) {
    for (const int bpm : {57, 58, 60, 62, 63, 90, 115, 116, 120, 125, 126, 180, 230, 231, 250, 251})
        vote_.add(60000.0F / static_cast<float>(bpm), 0.0F);
    vote_.keepOnly(500.0F);
    for (const int bpm : {57, 63, 90, 115, 126, 180, 230, 251})
        EXPECT_EQ(vote_.votes(bpm), 0) << bpm;
    for (const int bpm : {58, 60, 62, 116, 120, 125, 231, 250})
        EXPECT_EQ(vote_.votes(bpm), 4) << bpm;
    EXPECT_EQ(vote_.winner(), 58);
}

TEST_F(TempoVoteTest, KeepOnlyMayLeaveNothing) {
    vote_.add(500.0F, 0.0F);
    vote_.keepOnly(700.0F);
    EXPECT_EQ(vote_.winner(), -1);
    EXPECT_EQ(vote_.votes(120), 0);
    vote_.keepOnly(700.0F);
    vote_.add(700.0F, 0.0F);
    EXPECT_EQ(vote_.winner(), 86);
}

TEST_F(TempoVoteTest, ResetClearsAllVotes) {
    vote_.add(500.0F, 0.0F);
    vote_.reset();
    EXPECT_EQ(vote_.winner(), -1);
    EXPECT_EQ(vote_.votes(120), 0);
}

}  // namespace
