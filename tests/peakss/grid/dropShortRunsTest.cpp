// SPDX-License-Identifier: MIT
#include "peakss/grid/dropShortRuns.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatsOfIntervals;
using beatatlas::test::yieldCount;
using peakss::BeatInfo;
using peakss::BeatList;

constexpr float kA = 500.0F;
constexpr float kB = 700.0F;
constexpr float kC = 400.0F;

// So many beats of an interval in a row.
struct Row {
    float interval;
    int count;
    bool operator==(const Row&) const = default;
};
using Rows = std::vector<Row>;

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.count << " × " << row.interval;
}

class DropShortRunsTest : public beatatlas::test::RoundTowardZero {
protected:
    static Rows keptOf(const Rows& runs) {
        std::vector<float> intervals;
        for (const Row& row : runs)
            intervals.insert(intervals.end(), static_cast<std::size_t>(row.count), row.interval);
        BeatList raw = beatsOfIntervals(intervals);
        peakss::dropShortRuns(raw);
        Rows kept;
        for (const BeatInfo& beat : raw) {
            if (kept.empty() || kept.back().interval != beat.interval)
                kept.push_back({beat.interval, 0});
            ++kept.back().count;
        }
        return kept;
    }
};

// A run's first beat has nothing to match: 9 beats are 8 matches.
TEST_F(DropShortRunsTest, RunOfNineBeatsSurvivesAndOneOfEightGoes) {
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 9}}), (Rows{{kA, 9}, {kB, 9}}));
    EXPECT_EQ(keptOf({{kA, 8}, {kB, 9}}), (Rows{{kB, 9}}));
}

// Nor does a beat that follows a dropped run match itself.
TEST_F(DropShortRunsTest, RunBehindADroppedOneCountsItsMatchesTheSameWay) {
    EXPECT_EQ(keptOf({{kB, 1}, {kA, 8}, {kC, 9}}), (Rows{{kC, 9}}));
    EXPECT_EQ(keptOf({{kB, 1}, {kA, 9}, {kC, 9}}), (Rows{{kA, 9}, {kC, 9}}));
}

TEST_F(DropShortRunsTest, DropsAShortRunInsideATempo) {
    EXPECT_EQ(keptOf({{kA, 20}, {kB, 8}, {kA, 1}}), (Rows{{kA, 21}}));
}

// 9 beats of B are 8 matches, 32 are 31: interludes when A follows. 33 are 32: kept.
TEST_F(DropShortRunsTest, DropsAnInterludeOfEightToThirtyOneMatches) {
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 9}, {kA, 9}}), (Rows{{kA, 18}}));
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 32}, {kA, 9}}), (Rows{{kA, 18}}));
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 33}, {kA, 9}}), (Rows{{kA, 9}, {kB, 33}, {kA, 9}}));
}

TEST_F(DropShortRunsTest, KeepsARunOfEightMatchesThatDoesNotReturn) {
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 9}, {kC, 9}}), (Rows{{kA, 9}, {kB, 9}, {kC, 9}}));
}

// A's count goes on behind the dropped B: 8 + 1 matches, so that C breaks an accepted run, not a
// single beat.
TEST_F(DropShortRunsTest, BreakingBeatContinuesTheAcceptedRunCountIncluded) {
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 2}, {kA, 1}, {kC, 9}}), (Rows{{kA, 10}, {kC, 9}}));
}

// Behind the dropped B, 490 matches the accepted 500 and continues its run. 515 breaks it (490
// reaches to 509.6), after fewer than 32 matches, but is back at the accepted 500: what came since
// goes, the accepted run stays.
TEST_F(DropShortRunsTest, LaterReturnDropsOnlyTheBeatsSinceTheRunWasContinued) {
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 2}, {490.0F, 1}, {515.0F, 9}}), (Rows{{kA, 9}, {515.0F, 9}}));
}

// Neither A nor its double or half: the breaking beat opens the next run, and is its first beat.
TEST_F(DropShortRunsTest, BreakingBeatOfAnotherTempoOpensTheNextRun) {
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 2}, {kC, 9}}), (Rows{{kA, 9}, {kC, 9}}));
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 2}, {kC, 8}, {kA, 1}}), (Rows{{kA, 10}}));
}

TEST_F(DropShortRunsTest, ListIsCutAtALastRunOfFewerThanEightMatches) {
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 8}}), (Rows{{kA, 9}}));
    EXPECT_EQ(keptOf({{kA, 9}, {kB, 9}}), (Rows{{kA, 9}, {kB, 9}}));
}

TEST_F(DropShortRunsTest, LastRunStaysWhenNoneWasAcceptedBefore) {
    EXPECT_EQ(keptOf({{kA, 1}}), (Rows{{kA, 1}}));
    EXPECT_EQ(keptOf({{kA, 5}, {kB, 3}}), (Rows{{kB, 3}}));
    EXPECT_EQ(keptOf({}), Rows{});
}

// Each beat is compared with the one before it, so a slow drift keeps the tempo.
TEST_F(DropShortRunsTest, DriftingTempoIsOneRun) {
    std::vector<float> intervals;
    for (int i = 0; i < 40; ++i) intervals.push_back(400.0F + 10.0F * static_cast<float>(i));
    BeatList raw = beatsOfIntervals(intervals);
    peakss::dropShortRuns(raw);
    EXPECT_EQ(raw.size(), 40U);
}

TEST_F(DropShortRunsTest, DoubleAndHalfTempoCarryOnARun) {
    std::vector<float> intervals;
    for (int i = 0; i < 9; ++i) intervals.push_back(i % 2 == 0 ? kA : 2.0F * kA);
    intervals.insert(intervals.end(), 9, kB);
    BeatList raw = beatsOfIntervals(intervals);
    peakss::dropShortRuns(raw);
    EXPECT_EQ(raw.size(), 18U);
}

TEST_F(DropShortRunsTest, IntervalsThatAreNoTempoBreakRunsAndEnd) {
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(keptOf({{kA, 9}, {0.0F, 5}, {kA, 9}, {kNoNumber, 1}, {-kA, 3}}), (Rows{{kA, 18}}));
}

TEST_F(DropShortRunsTest, YieldsOncePerBeatBehindTheFirst) {
    const long before = yieldCount();
    keptOf({{kA, 20}});
    EXPECT_EQ(yieldCount() - before, 19);
}

}  // namespace
