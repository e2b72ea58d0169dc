// SPDX-License-Identifier: MIT
#include "peakss/grid/dropStrayGroups.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using peakss::BeatInfo;
using peakss::BeatList;
using peakss::GroupTempos;

BeatInfo heard(int group, float interval) {
    return beatAt(0, interval, group);
}

class MeasureGroupTemposTest : public beatatlas::test::RoundTowardZero {};

TEST_F(MeasureGroupTemposTest, FirstBeatOfAGroupHasItsTempo) {
    EXPECT_EQ(peakss::measureGroupTempos({heard(0, 500.0F), heard(0, 700.0F), heard(1, 400.0F)}),
              (GroupTempos{{0, 500.0F}, {1, 400.0F}}));
}

TEST_F(MeasureGroupTemposTest, SkippedGroupTakesItsTempoOnlyInAgreementWithTheNext) {
    EXPECT_EQ(peakss::measureGroupTempos({heard(3, 500.0F), heard(1, 700.0F), heard(1, 1000.0F)}),
              (GroupTempos{{1, 1000.0F}, {3, 500.0F}}));
    // Of the groups behind 1, 2 is the next with a tempo once it has one.
    EXPECT_EQ(peakss::measureGroupTempos({heard(3, 500.0F), heard(2, 510.0F), heard(1, 529.0F)}),
              (GroupTempos{{1, 529.0F}, {2, 510.0F}, {3, 500.0F}}));
    EXPECT_EQ(peakss::measureGroupTempos({heard(3, 500.0F), heard(1, 529.0F)}),
              (GroupTempos{{3, 500.0F}}));
}

TEST_F(MeasureGroupTemposTest, IntervalOfZeroIsNoTempo) {
    EXPECT_EQ(peakss::measureGroupTempos({heard(0, 0.0F)}), GroupTempos{});
    EXPECT_EQ(peakss::measureGroupTempos({heard(0, 0.0F), heard(1, 500.0F), heard(0, 250.0F)}),
              (GroupTempos{{0, 250.0F}, {1, 500.0F}}));
    // The highest group so far is passed even when it has no tempo: nothing stands behind it to
    // agree with.
    EXPECT_EQ(peakss::measureGroupTempos({heard(1, 0.0F), heard(1, 500.0F)}), GroupTempos{});
}

TEST_F(MeasureGroupTemposTest, WeightIsNoPartOfTheGroupNumber) {
    EXPECT_EQ(peakss::measureGroupTempos({beatAt(0, 500.0F, 2, 255), beatAt(0, 400.0F, 2, 0)}),
              (GroupTempos{{2, 500.0F}}));
}

TEST_F(MeasureGroupTemposTest, HighestAndNegativeGroupsAreSafe) {
    BeatInfo highest = heard(0, 500.0F);
    highest.group = std::numeric_limits<int>::max();
    BeatInfo lowest = heard(0, 500.0F);
    lowest.group = std::numeric_limits<int>::min();
    const GroupTempos tempos = peakss::measureGroupTempos({highest, lowest, heard(0, 400.0F)});
    EXPECT_EQ(tempos, (GroupTempos{{-(1 << 23), 500.0F}, {(1 << 23) - 1, 500.0F}}));
}

}  // namespace
