// SPDX-License-Identifier: MIT
#include "view/DotsSum.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

/** 100 chunks to a dot, so moving on scales by 75 / 200. */
class DotsSumTest : public test::RoundTowardZero {
protected:
    DotsSumTest() {
        records.reset();
        sum.create(100);
        for (int i = 0; i < 100; ++i)
            records.data()[i].level900 = 1000.9F + static_cast<float>(100 * i);
    }

    void put(std::int32_t recordCount, std::int64_t chunk, bool ended = false) {
        sum.put(records, recordCount, ended, chunk);
    }

    PeakRecords records;
    DotsSum sum;
};

TEST_F(DotsSumTest, AddsTheFirstNewRecordTruncated) {
    put(1, 51);
    EXPECT_EQ(sum[0], 1000);
    put(2, 60);
    EXPECT_EQ(sum[0], 2100);
    put(2, 61);
    EXPECT_EQ(sum[0], 2100);
}

TEST_F(DotsSumTest, SkipsLaterNewRecordsOfTheSameCall) {
    put(3, 51);
    EXPECT_EQ(sum[0], 1000);
    put(4, 52);
    EXPECT_EQ(sum[0], 2300);
}

TEST_F(DotsSumTest, DropsThePeaksOfTheFirstFiftyChunks) {
    put(1, 50);
    EXPECT_EQ(sum[0], 0);
    put(1, 51);
    EXPECT_EQ(sum[0], 0);
    put(2, 52);
    EXPECT_EQ(sum[0], 1100);
}

TEST_F(DotsSumTest, MovesOnByTheChunkCounterInWholeNumbers) {
    put(0, 99);
    EXPECT_EQ(sum.index(), 0);
    put(0, 100);
    EXPECT_EQ(sum.index(), 1);
    put(0, 399);
    EXPECT_EQ(sum.index(), 3);
}

// 1000 × 75 / 200 = 375; 2100 × 75 / 200 = 787.5, cut.
TEST_F(DotsSumTest, ScalesADotInIntegersWhenItMovesOn) {
    put(1, 60);
    put(2, 70);
    put(2, 100);
    EXPECT_EQ(sum[0], 787);
    EXPECT_EQ(sum[1], 0);
}

TEST_F(DotsSumTest, PutsAPeakThatComesWithTheMoveIntoTheNewDot) {
    put(1, 60);
    put(2, 250);
    EXPECT_EQ(sum[0], 375);
    EXPECT_EQ(sum[1], 0);
    EXPECT_EQ(sum[2], 1100);
}

TEST_F(DotsSumTest, StaysInTheLastDotUntilTheEnd) {
    put(1, 9900);
    put(2, 50000);
    EXPECT_EQ(sum.index(), 99);
    EXPECT_EQ(sum[99], 2100);
}

TEST_F(DotsSumTest, ClosesAllDotsAtTheEndAndTakesNothingMore) {
    put(1, 60);
    put(2, 70, true);
    EXPECT_EQ(sum.index(), 100);
    EXPECT_EQ(sum[0], 375);
    EXPECT_EQ(sum[99], 0);
    put(3, 71, true);
    EXPECT_EQ(sum[0], 375);
}

TEST_F(DotsSumTest, WaitsWhenTheRecordsHaveStartedOver) {
    put(5, 60);
    put(1, 61);
    EXPECT_EQ(sum[0], 1000);
    put(2, 62);
    EXPECT_EQ(sum[0], 2100);
}

// 2000000000 + 2000000000 = 4000000000 - 2^32 = -294967296; × 75 = -22122547200 + 5 × 2^32 =
// -647710720; / 200.
TEST_F(DotsSumTest, WrapsAbsurdSums) {
    records.data()[0].level900 = 2e9F;
    records.data()[1].level900 = 2e9F;
    put(1, 60);
    put(2, 61);
    EXPECT_EQ(sum[0], -294967296);
    put(2, 100);
    EXPECT_EQ(sum[0], -3238553);
    records.data()[2].level900 = 1e30F;
    put(3, 101);
    EXPECT_EQ(sum[1], INT32_MIN);
}

TEST_F(DotsSumTest, ResetEqualsNew) {
    put(2, 250);
    sum.reset();
    EXPECT_EQ(sum.index(), 0);
    EXPECT_EQ(sum[2], 0);
    put(1, 51);
    EXPECT_EQ(sum[0], 1000);
}

}  // namespace
}  // namespace beatatlas
