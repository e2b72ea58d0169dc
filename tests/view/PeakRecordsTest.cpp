// SPDX-License-Identifier: MIT
#include "view/PeakRecords.h"

#include <vector>

#include <gtest/gtest.h>

#include "view/DetectorFeed.h"
#include "view/LevelDetector.h"

namespace beatatlas {
namespace {

TEST(PeakRecords, MarksOnlyRecordZeroAsHoldingNoPeakYet) {
    PeakRecords records;
    records.reset();
    EXPECT_EQ(records[0].level, 0.01F);
    EXPECT_EQ(records[0].level900, 0.01F);
    EXPECT_EQ(records[1].level, 0.0F);
    EXPECT_EQ(records[35999].level900, 0.0F);
}

TEST(PeakRecords, GrowsWithTheCountAndKeepsWhatItHolds) {
    PeakRecords records;
    records.reset();
    records.data()[35999].level = 7.0F;
    records.makeRoom(36000);
    records.data()[36001].level = 8.0F;
    records.makeRoom(100000);
    EXPECT_EQ(records[35999].level, 7.0F);
    EXPECT_EQ(records[36001].level, 8.0F);
    EXPECT_EQ(records[100002].level, 0.0F);
}

TEST(PeakRecords, ResetEmptiesTheGrownPartToo) {
    PeakRecords records;
    records.reset();
    records.makeRoom(40000);
    records.data()[40000].level = 8.0F;
    records.reset();
    records.makeRoom(40000);
    EXPECT_EQ(records[40000].level, 0.0F);
}

// Peaks as close as they can be, 240 samples apart: more of them than the room taken at first.
TEST(PeakRecords, HoldsThePeaksOfAVeryLongTrack) {
    PeakRecords records;
    records.reset();
    LevelDetector detector;
    detector.create(DetectorTiming(750, 2000000000), 0.75F);
    const std::vector<float> chunk(10, 1000.0F);
    for (int i = 0; i < 24 * 40000; ++i) test::putChunk(detector, records, chunk.data(), 10);
    EXPECT_EQ(detector.recordCount(), 40000);
    EXPECT_EQ(records[39998].level, 1000.0F);
    EXPECT_EQ(records[39998].interval, 240);
}

}  // namespace
}  // namespace beatatlas
