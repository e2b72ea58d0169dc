// SPDX-License-Identifier: MIT
#include "peakss/grid/tempoMismatchRemoval.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatsOfIntervals;
using beatatlas::test::intervalsOf;
using beatatlas::test::yieldCount;
using peakss::BeatList;
using Intervals = std::vector<float>;

class TempoMismatchRemovalTest : public beatatlas::test::RoundTowardZero {
protected:
    static Intervals keptOf(const Intervals& intervals, float track = 500.0F) {
        BeatList raw = beatsOfIntervals(intervals);
        peakss::tempoMismatchRemoval(raw, track);
        return intervalsOf(raw);
    }
};

TEST_F(TempoMismatchRemovalTest, KeepsTheTempoItsDoubleAndItsHalf) {
    EXPECT_EQ(keptOf({500.0F, 700.0F, 1000.0F, 250.0F, 750.0F}),
              (Intervals{500.0F, 1000.0F, 250.0F}));
}

// 700 is dropped, but stays the value the next beat is compared with; 720 matches it, 740 matches 720.
TEST_F(TempoMismatchRemovalTest, KeepsBeatsThatMatchADroppedNeighbour) {
    EXPECT_EQ(keptOf({500.0F, 700.0F, 719.0F, 738.0F, 500.0F}),
              (Intervals{500.0F, 719.0F, 738.0F, 500.0F}));
}

// The tolerance of 500 ms is 20: an interval of 20 ms passes, but only as the first beat.
TEST_F(TempoMismatchRemovalTest, WalkBeginsWithTheToleranceAsPreviousInterval) {
    EXPECT_EQ(keptOf({20.0F, 500.0F}), (Intervals{20.0F, 500.0F}));
    EXPECT_EQ(keptOf({500.0F, 20.0F}), (Intervals{500.0F}));
}

TEST_F(TempoMismatchRemovalTest, AbsurdIntervalsGoAndEmptyListsStayEmpty) {
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    EXPECT_EQ(keptOf({0.0F, 0.0F, -500.0F, -500.0F, kNoNumber, kNoNumber, kInfinite, kInfinite}),
              Intervals{});
    EXPECT_EQ(keptOf({}), Intervals{});
    EXPECT_EQ(keptOf({500.0F}, kInfinite), Intervals{});
}

TEST_F(TempoMismatchRemovalTest, YieldsOncePerBeat) {
    const long before = yieldCount();
    keptOf({500.0F, 700.0F, 1000.0F});
    EXPECT_EQ(yieldCount() - before, 3);
}

}  // namespace
