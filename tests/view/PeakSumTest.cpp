// SPDX-License-Identifier: MIT
#include "view/PeakSum.h"

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

/** 100 chunks to a slot, so closing one scales by 75 / 200. */
class PeakSumTest : public test::RoundTowardZero {
protected:
    PeakSumTest() {
        records.reset();
        sum.create(100.0F);
        for (int i = 0; i < 1000; ++i) records.data()[i].level = 1000.5F;
    }

    void put(std::int32_t recordCount, std::int64_t chunk) {
        sum.put(records, recordCount, false, chunk);
    }
    void end(std::int32_t recordCount, std::int64_t chunk) {
        sum.put(records, recordCount, true, chunk);
    }

    PeakRecords records;
    PeakSum sum;
};

TEST_F(PeakSumTest, LeavesTheNewestRecordForLater) {
    put(1, 10);
    EXPECT_EQ(sum[0], 0.0F);
    put(2, 20);
    EXPECT_EQ(sum[0], 1000.0F);
    put(2, 30);
    EXPECT_EQ(sum[0], 1000.0F);
    put(5, 40);
    EXPECT_EQ(sum[0], 4000.0F);
}

TEST_F(PeakSumTest, TruncatesEachLevelToAnInteger) {
    records.data()[0].level = 0.9999F;
    records.data()[1].level = 7.9999F;
    put(3, 10);
    EXPECT_EQ(sum[0], 7.0F);
}

TEST_F(PeakSumTest, ClosesASlotOfTwoPointsWithTheFirstPeakAfterItsTime) {
    put(2, 99);
    EXPECT_EQ(sum.index(), 0);
    put(3, 100);
    EXPECT_EQ(sum.index(), 2);
    EXPECT_EQ(sum[0], 375.0F);  // 1000 × 75 / 200
    EXPECT_EQ(sum[1], 375.0F);
    EXPECT_EQ(sum[2], 1000.0F);
    EXPECT_EQ(sum[3], 0.0F);
}

TEST_F(PeakSumTest, LeavesSlotsAtZeroThatPassWithoutAPeak) {
    put(2, 10);
    put(3, 350);
    EXPECT_EQ(sum.index(), 6);
    EXPECT_EQ(sum[0], 375.0F);
    for (int k = 2; k < 6; ++k) EXPECT_EQ(sum[k], 0.0F);
    EXPECT_EQ(sum[6], 1000.0F);
}

// Chunk 150 leaves half a slot over: the next boundary is at 200, not at 250.
TEST_F(PeakSumTest, CarriesTheRestOfASlotOver) {
    put(2, 10);
    put(3, 150);
    EXPECT_EQ(sum.index(), 2);
    put(4, 199);
    EXPECT_EQ(sum.index(), 2);
    put(5, 200);
    EXPECT_EQ(sum.index(), 4);
}

// All new records of a call stand at the call's chunk, so they share a slot however far apart they
// are.
TEST_F(PeakSumTest, PutsAllRecordsOfOneCallIntoOneSlot) {
    put(6, 350);
    EXPECT_EQ(sum.index(), 6);
    EXPECT_EQ(sum[0], 0.0F);
    EXPECT_EQ(sum[6], 5000.0F);
}

TEST_F(PeakSumTest, LeavesTheTracksLastRecordOut) {
    put(2, 10);
    end(4, 20);
    EXPECT_EQ(sum[0], 3000.0F);
    EXPECT_EQ(sum.index(), 0);
}

// Three records are left at the end, one of them the last: the sum so far is closed with its
// boundary all the same.
TEST_F(PeakSumTest, ClosesASlotAtTheLastRecordThoughItIsNotAdded) {
    put(2, 10);
    end(2, 120);
    EXPECT_EQ(sum.index(), 2);
    EXPECT_EQ(sum[0], 375.0F);
    EXPECT_EQ(sum[2], 0.0F);
}

TEST_F(PeakSumTest, SumsNothingMoreOnceTheEndIsSummed) {
    end(3, 20);
    EXPECT_EQ(sum[0], 2000.0F);
    end(3, 500);
    EXPECT_EQ(sum[0], 2000.0F);
    EXPECT_EQ(sum.index(), 0);
}

TEST_F(PeakSumTest, StopsWhenTheStripIsFull) {
    put(2, 10);
    put(3, 20000);
    EXPECT_EQ(sum.index(), 400);
    EXPECT_EQ(sum[0], 375.0F);
    EXPECT_EQ(sum[399], 0.0F);
    put(10, 30000);
    end(20, 30001);
    EXPECT_EQ(sum.index(), 400);
    EXPECT_EQ(sum[399], 0.0F);
}

TEST_F(PeakSumTest, FillsTheLastSlot) {
    put(2, 10);
    put(3, 19900);
    EXPECT_EQ(sum.index(), 398);
    EXPECT_EQ(sum[398], 1000.0F);
    put(4, 20000);
    EXPECT_EQ(sum.index(), 400);
    EXPECT_EQ(sum[398], 375.0F);
    EXPECT_EQ(sum[399], 375.0F);
}

// Four records were summed when the detector started over at one: nothing is new until it has
// passed the four again.
TEST_F(PeakSumTest, WaitsWhenTheRecordsHaveStartedOver) {
    put(5, 10);
    put(1, 20);
    put(5, 30);
    EXPECT_EQ(sum[0], 4000.0F);
    put(6, 40);
    EXPECT_EQ(sum[0], 5000.0F);
}

TEST_F(PeakSumTest, FollowsTheRecordsBackAtTheEnd) {
    put(5, 10);
    end(2, 20);
    EXPECT_EQ(sum[0], 4000.0F);
    end(4, 30);  // records 2 and 3, the last of them left out
    EXPECT_EQ(sum[0], 5000.0F);
}

TEST_F(PeakSumTest, TakesAbsurdLevelsAsTheMostNegativeInteger) {
    records.data()[0].level = 1e30F;
    put(2, 10);
    EXPECT_EQ(sum[0], -2147483648.0F);
}

TEST_F(PeakSumTest, ResetEqualsNew) {
    put(3, 250);
    sum.reset();
    EXPECT_EQ(sum.index(), 0);
    EXPECT_EQ(sum[0], 0.0F);
    EXPECT_EQ(sum[4], 0.0F);
    put(2, 99);
    EXPECT_EQ(sum.index(), 0);
    EXPECT_EQ(sum[0], 1000.0F);
}

}  // namespace
}  // namespace beatatlas
