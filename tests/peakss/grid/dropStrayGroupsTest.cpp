// SPDX-License-Identifier: MIT
#include "peakss/grid/dropStrayGroups.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatsOfIntervals;
using beatatlas::test::yieldCount;
using peakss::BeatInfo;
using peakss::BeatList;
using Intervals = std::vector<float>;
using Groups = std::vector<int>;

// Intervals of unlike tempo.
constexpr float kA = 500.0F;
constexpr float kB = 700.0F;
constexpr float kC = 400.0F;

Intervals repeated(float interval, int count) {
    return Intervals(static_cast<std::size_t>(count), interval);
}

Intervals operator+(Intervals a, const Intervals& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Groups fromTo(int first, int end) {
    Groups groups;
    for (int i = first; i < end; ++i) groups.push_back(i);
    return groups;
}

class DropStrayGroupsTest : public beatatlas::test::RoundTowardZero {
protected:
    // One beat per group, of the given intervals; returns the groups kept.
    static Groups keptOf(const Intervals& intervals) {
        BeatList raw = beatsOfIntervals(intervals);
        peakss::dropStrayGroups(raw, peakss::measureGroupTempos(raw));
        Groups groups;
        for (const BeatInfo& beat : raw) groups.push_back(peakss::groupNumber(beat));
        return groups;
    }
};

TEST_F(DropStrayGroupsTest, KeepsARunOfGroupsOfOneTempo) {
    EXPECT_EQ(keptOf(repeated(kA, 5)), fromTo(0, 5));
}

TEST_F(DropStrayGroupsTest, KeepsFewerThanTwoGroups) {
    EXPECT_EQ(keptOf({}), Groups{});
    EXPECT_EQ(keptOf({kA}), (Groups{0}));
    EXPECT_EQ(keptOf({0.0F, 0.0F, kA}), (Groups{2}));
}

TEST_F(DropStrayGroupsTest, DropsGroupsWithoutATempoWhereverTheyStand) {
    EXPECT_EQ(keptOf({0.0F, kA, 0.0F, kA, kA, 0.0F}), (Groups{1, 3, 4}));
    EXPECT_EQ(keptOf({0.0F, 0.0F}), Groups{});
}

// Group 0 is followed by no match and goes. Group 1 begins anew and matches itself, so that with
// group 2 the run has the two matches it needs.
TEST_F(DropStrayGroupsTest, GroupBehindADroppedRunMatchesItself) {
    EXPECT_EQ(keptOf({kB, kA, kA, kC}), (Groups{1, 2}));
    // From the very first group on there is no such gift: one match is too few.
    EXPECT_EQ(keptOf({kA, kA, kC, kC, kC}), (Groups{2, 3, 4}));
}

TEST_F(DropStrayGroupsTest, DropsAShortRunInsideATempo) {
    EXPECT_EQ(keptOf({kA, kA, kA, kB, kA, kA}), (Groups{0, 1, 2, 4, 5}));
    EXPECT_EQ(keptOf({kA, kA, kA, kB, kB, kA, kA}), (Groups{0, 1, 2, 5, 6}));
}

// 2 to 7 matches that end at the accepted tempo are an interlude, 8 are not: 9 groups of B.
TEST_F(DropStrayGroupsTest, DropsAnInterludeOfFewerThanEightMatches) {
    const Intervals a = repeated(kA, 3);
    EXPECT_EQ(keptOf(a + repeated(kB, 8) + a), (Groups{0, 1, 2, 11, 12, 13}));
    EXPECT_EQ(keptOf(a + repeated(kB, 9) + a), fromTo(0, 15));
}

// The run that breaks it is of a third tempo: B is accepted.
TEST_F(DropStrayGroupsTest, KeepsAShortRunThatDoesNotReturn) {
    EXPECT_EQ(keptOf(repeated(kA, 3) + repeated(kB, 3) + repeated(kC, 3)), fromTo(0, 9));
}

// Group 4 alone would be too short a run; with the accepted run's count it has 2 + 1 matches when B
// breaks it.
TEST_F(DropStrayGroupsTest, BreakingGroupContinuesTheAcceptedRunCountIncluded) {
    EXPECT_EQ(keptOf({kA, kA, kA, kB, kA, kB, kB}), (Groups{0, 1, 2, 4, 5, 6}));
}

TEST_F(DropStrayGroupsTest, DropsALastGroupThatMatchesNothing) {
    EXPECT_EQ(keptOf({kA, kA, kA, kB}), (Groups{0, 1, 2}));
    EXPECT_EQ(keptOf({kA, kA, kA, kB, kB}), fromTo(0, 5));
}

// Before any run is accepted nothing precedes the last one, which stays.
TEST_F(DropStrayGroupsTest, KeepsALastGroupWhenNoRunWasAccepted) {
    EXPECT_EQ(keptOf({kA, kB}), (Groups{1}));
}

TEST_F(DropStrayGroupsTest, DoubleAndHalfTempoCarryOnARun) {
    EXPECT_EQ(keptOf({kA, 1000.0F, kA, 250.0F, kA}), fromTo(0, 5));
}

TEST_F(DropStrayGroupsTest, AGroupLosesAllItsBeatsWhereverTheyStand) {
    BeatList raw = beatsOfIntervals({kA, kA, kA, kB, kA});
    raw.push_back(beatatlas::test::beatAt(999999, kA, 3));
    peakss::dropStrayGroups(raw, peakss::measureGroupTempos(raw));
    for (const BeatInfo& beat : raw) EXPECT_NE(peakss::groupNumber(beat), 3);
    EXPECT_EQ(raw.size(), 4U);
}

TEST_F(DropStrayGroupsTest, TempiThatDoNotMatchThemselvesEnd) {
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    EXPECT_EQ(keptOf({kNoNumber, kNoNumber, -kA, -kA, kInfinite, kInfinite}), (Groups{5}));
    EXPECT_EQ(keptOf({-kA, kA, kA, kA, kNoNumber}), (Groups{1, 2, 3}));
}

TEST_F(DropStrayGroupsTest, YieldsOncePerBeatAndOncePerGroup) {
    const long before = yieldCount();
    keptOf(repeated(kA, 10));
    EXPECT_EQ(yieldCount() - before, 10 + 9);  // the first group opens the walk
}

}  // namespace
