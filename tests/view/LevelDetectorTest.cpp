// SPDX-License-Identifier: MIT
#include "view/LevelDetector.h"

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"
#include "view/DetectorFeed.h"

namespace beatatlas {
namespace {

using LevelDetectorTest = test::RoundTowardZero;
using Feed = test::DetectorFeed<LevelDetector>;

constexpr int kLong = 1000000;

TEST_F(LevelDetectorTest, OpensRecordZeroWithTheFirstSampleAboveTheFloor) {
    Feed f(kLong);
    f.chunk({0.0F, 0.01F, 0.0F, 0.02F, 0.0F});
    EXPECT_EQ(f.detector.recordCount(), 1);
    EXPECT_EQ(f.records[0].level, 0.02F);
    EXPECT_EQ(f.records[0].interval, 4);
    EXPECT_EQ(f.records[0].maxpos, 0);
    EXPECT_EQ(f.detector.peakPosition(), 4);
}

TEST_F(LevelDetectorTest, OpensNoRecordInSilence) {
    Feed f(kLong);
    f.level(0.0F, 5000);
    EXPECT_EQ(f.detector.recordCount(), 0);
    EXPECT_EQ(f.records[0].level, 0.01F);
    EXPECT_EQ(f.detector.peakPosition(), 0);
}

// Chunks without a trace take their time all the same: the count is the same however the silence is
// cut.
TEST_F(LevelDetectorTest, CountsTheTimeOfChunksThatPassUnnoticed) {
    for (const std::size_t chunkLen : {1U, 7U, 10U}) {
        Feed f(kLong);
        f.level(0.0F, 500, chunkLen);
        f.level(100.0F, 1);
        f.level(1.0F, 700, chunkLen);
        f.level(99.0F, 1);
        EXPECT_EQ(f.records[0].interval, 501);
        EXPECT_EQ(f.records[1].interval, 701);
    }
}

TEST_F(LevelDetectorTest, MarksThePeakOfTheLastChunkOnly) {
    Feed f(kLong);
    f.chunk({0.0F, 5.0F});
    EXPECT_EQ(f.detector.peakPosition(), 2);
    f.chunk({0.0F, 0.0F});
    EXPECT_EQ(f.detector.peakPosition(), 0);
}

// The held level goes into the current record at the end of each chunk, though that one is not
// counted yet.
TEST_F(LevelDetectorTest, KeepsTheHeldLevelInTheCurrentRecordFromChunkToChunk) {
    Feed f(kLong);
    f.chunk({5.0F, 7.0F});
    EXPECT_EQ(f.detector.recordCount(), 1);
    EXPECT_EQ(f.records[0].level, 5.0F);
    EXPECT_EQ(f.records[1].level, 7.0F);
}

TEST_F(LevelDetectorTest, RaisesTheHeldLevelOnlyStrictlyAboveIt) {
    Feed f(kLong);
    f.chunk({5.0F, 5.0F, 6.0F, 6.0F, 5.9F});
    EXPECT_EQ(f.records[1].level, 6.0F);
    EXPECT_EQ(f.records[1].maxpos, 2);
}

// Opened by sample 1, so the count is 239 at sample 240 and 240 at sample 241.
TEST_F(LevelDetectorTest, AcceptsNoPeakBeforeTheLeastInterval) {
    Feed early(kLong);
    early.level(100.0F, 1);
    early.feed(std::vector<float>(238, 0.0F));
    early.chunk({100.0F});
    EXPECT_EQ(early.detector.recordCount(), 1);

    Feed inTime(kLong);
    inTime.level(100.0F, 1);
    inTime.feed(std::vector<float>(239, 0.0F));
    inTime.chunk({100.0F});
    EXPECT_EQ(inTime.detector.recordCount(), 2);
}

TEST_F(LevelDetectorTest, AcceptsASampleFromTheRatioOfTheHeldLevelUpwards) {
    for (const float ratio : {0.75F, 0.66F}) {
        for (const bool reaches : {true, false}) {
            Feed f(kLong, ratio);
            f.level(100.0F, 1);
            f.level(0.0F, 300);
            f.chunk({(ratio * 100.0F) - (reaches ? 0.0F : 0.001F)});
            EXPECT_EQ(f.detector.recordCount(), reaches ? 2 : 1) << ratio;
        }
    }
}

// Peaks of 100, 90 and 80, held levels 100 (raised to 110), 90, 80. The interval that ends with the
// second peak is written to record 1, the level 110 to record 0; with the third: record 2, and 90
// to record 1.
TEST_F(LevelDetectorTest, WritesTheIntervalToTheCurrentRecordAndTheHeldLevelToTheOneBefore) {
    Feed f(kLong);
    f.chunk({100.0F, 110.0F});
    f.level(0.0F, 298);
    f.chunk({90.0F});
    EXPECT_EQ(f.detector.recordCount(), 2);
    EXPECT_EQ(f.records[0].level, 110.0F);
    EXPECT_EQ(f.records[0].interval, 1);
    EXPECT_EQ(f.records[1].interval, 300);
    f.level(0.0F, 399);
    f.chunk({80.0F});
    EXPECT_EQ(f.detector.recordCount(), 3);
    EXPECT_EQ(f.records[0].level, 110.0F);
    EXPECT_EQ(f.records[1].level, 90.0F);
    EXPECT_EQ(f.records[2].interval, 400);
}

TEST_F(LevelDetectorTest, MarksThePositionOfAnAcceptedPeak) {
    Feed f(kLong);
    f.level(100.0F, 1);
    f.level(0.0F, 300);
    f.chunk({0.0F, 0.0F, 90.0F, 91.0F});
    EXPECT_EQ(f.detector.peakPosition(), 3);
}

// Count 1285 is still held; 1286 is the first step towards a decay, which comes with the eighth. A
// chunk of counts 1285 to 1292 thus sees seven steps, one of 1286 to 1293 all eight.
TEST_F(LevelDetectorTest, HoldsALevelForItsTimeAndThenDecays) {
    Feed held(kLong);
    held.level(100.0F, 1);
    held.level(0.0F, 1284, 1);
    held.level(0.0F, 8);
    EXPECT_EQ(held.records[1].level, 100.0F);

    Feed decayed(kLong);
    decayed.level(100.0F, 1);
    decayed.level(0.0F, 1285, 1);
    decayed.level(0.0F, 8);
    EXPECT_EQ(decayed.records[1].level, 100.0F * 0.9938303F);
}

TEST_F(LevelDetectorTest, StartsTheDecayCounterAnewWithEveryChunk) {
    Feed f(kLong);
    f.level(100.0F, 1);
    f.level(0.0F, 1285, 1);
    f.level(0.0F, 7000, 7);
    EXPECT_EQ(f.records[1].level, 100.0F);
    // Ten samples per chunk against a step of eight: one decay per chunk, the other two samples are
    // lost.
    f.level(0.0F, 30, 10);
    EXPECT_EQ(f.records[1].level, ((100.0F * 0.9938303F) * 0.9938303F) * 0.9938303F);
}

// At 44,100 Hz: a chunk of 588 samples against a step of 512.
TEST_F(LevelDetectorTest, DecaysAtMostOncePerChunkAt44100) {
    PeakRecords records;
    records.reset();
    LevelDetector detector;
    detector.create(DetectorTiming(44100, kLong), 0.75F);
    std::vector<float> chunk(588, 0.0F);
    chunk[0] = 1000.0F;
    test::putChunk(detector, records, chunk.data(), 588);
    chunk[0] = 0.0F;
    // Count 587 after the first chunk; past the hold (75587) in the 129th further one, 128 × 588 =
    // 75264.
    for (int i = 0; i < 128; ++i) test::putChunk(detector, records, chunk.data(), 588);
    EXPECT_EQ(records[1].level, 1000.0F);
    float expected = 1000.0F;
    for (int i = 0; i < 50; ++i) {
        test::putChunk(detector, records, chunk.data(), 588);
        expected *= 0.9938303F;
        ASSERT_EQ(records[1].level, expected);
    }
}

TEST_F(LevelDetectorTest, DecaysToTheFloorAndNoFurther) {
    Feed f(kLong);
    f.level(0.0101F, 1);
    f.level(0.0F, 1285);
    f.level(0.0F, 100);
    EXPECT_EQ(f.records[1].level, 0.01F);
}

// From the held floor on, a sample of exactly 0.01 is a candidate, though it could not open the
// first record.
TEST_F(LevelDetectorTest, TakesASampleAtTheFloorOnceTheHeldLevelIsThere) {
    Feed f(kLong);
    f.level(100.0F, 1);
    f.level(0.0F, 300);
    f.level(100.0F, 1);
    f.level(0.0F, 20000);
    ASSERT_EQ(f.records[2].level, 0.01F);
    f.chunk({0.0099F});
    EXPECT_EQ(f.detector.recordCount(), 2);
    f.chunk({0.01F});
    EXPECT_EQ(f.detector.recordCount(), 3);
    EXPECT_EQ(f.records[1].level, 0.01F);
}

// One peak, then silence until the held level is the floor: the next peak writes that to record 0,
// which reads as no peak yet. The sample after opens record 0 again, and the count of records
// starts over.
TEST_F(LevelDetectorTest, StartsOverWhenRecordZeroIsLeftAtTheFloor) {
    Feed f(kLong);
    f.level(100.0F, 1);
    f.level(0.0F, 20000);
    ASSERT_EQ(f.records[1].level, 0.01F);
    f.chunk({50.0F});
    EXPECT_EQ(f.detector.recordCount(), 2);
    EXPECT_EQ(f.records[0].level, 0.01F);
    EXPECT_EQ(f.records[1].interval, 20001);
    f.chunk({0.0F, 3.0F});
    EXPECT_EQ(f.detector.recordCount(), 1);
    EXPECT_EQ(f.records[0].level, 3.0F);
    EXPECT_EQ(f.records[0].interval, 2);
}

// Declared 25: the last sample is the fifth of the third chunk. The samples after it belong to the
// chunk too.
TEST_F(LevelDetectorTest, ClosesTheTrackAtItsLastSampleInAFullChunk) {
    Feed f(25);
    f.level(100.0F, 20);
    EXPECT_FALSE(f.detector.ended());
    f.chunk({90.0F, 90.0F, 120.0F, 90.0F, 90.0F, 130.0F, 0.0F, 0.0F, 0.0F, 0.0F});
    EXPECT_TRUE(f.detector.ended());
    EXPECT_EQ(f.detector.recordCount(), 2);
    EXPECT_EQ(f.records[1].level, 120.0F);
    EXPECT_EQ(f.records[1].interval, 24);
    EXPECT_EQ(f.records[2].level, 130.0F);
    EXPECT_EQ(f.records[2].maxpos, 25);
}

TEST_F(LevelDetectorTest, ClosesTheTrackAtItsLastSampleInAShortChunk) {
    Feed f(25);
    f.level(100.0F, 24);
    EXPECT_FALSE(f.detector.ended());  // 10 + 10 + 4: the count of chunks runs ahead
    Feed whole(25);
    whole.level(100.0F, 25);
    EXPECT_TRUE(whole.detector.ended());
    EXPECT_EQ(whole.detector.recordCount(), 2);
    EXPECT_EQ(whole.records[1].interval, 24);
}

TEST_F(LevelDetectorTest, TakesEveryChunkBeforeForAFullOne) {
    Feed f(25);
    f.level(100.0F, 8, 4);  // two short chunks count as 20 samples
    f.chunk({1.0F, 1.0F, 1.0F, 1.0F, 1.0F});
    EXPECT_TRUE(f.detector.ended());
}

TEST_F(LevelDetectorTest, ClosesASilentTrackWithTheFloor) {
    Feed f(20);
    f.level(0.0F, 20);
    EXPECT_TRUE(f.detector.ended());
    EXPECT_EQ(f.detector.recordCount(), 1);
    EXPECT_EQ(f.records[0].level, 0.01F);
    EXPECT_EQ(f.records[0].interval, 20);
}

// Record 1 is counted with the second peak but would get its level with the third. The track ends
// first, so it keeps what the chunk before the second peak left there: the level held from the
// first.
TEST_F(LevelDetectorTest, LeavesTheNewestRecordItsProvisionalLevelWhenTheTrackEnds) {
    Feed f(320);
    f.level(100.0F, 10);
    f.level(0.0F, 290);
    f.chunk({0.0F, 90.0F, 0.0F});
    f.level(0.0F, 10);
    EXPECT_TRUE(f.detector.ended());
    EXPECT_EQ(f.detector.recordCount(), 3);
    EXPECT_EQ(f.records[1].level, 100.0F);
    EXPECT_EQ(f.records[2].level, 90.0F);
}

// The end is the fifth sample of a chunk whose rest is silent; the peak comes 310 samples after the
// first.
TEST_F(LevelDetectorTest, GoesOnAfterTheEnd) {
    Feed f(5);
    f.chunk({100.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F});
    EXPECT_TRUE(f.detector.ended());
    f.level(0.0F, 300);
    f.chunk({200.0F});
    EXPECT_EQ(f.detector.recordCount(), 3);
    EXPECT_EQ(f.records[2].interval, 310);
}

TEST_F(LevelDetectorTest, ResetEqualsNew) {
    Feed used(200);
    used.level(100.0F, 205);
    used.records.reset();
    used.detector.reset();
    Feed fresh(200);
    for (Feed* f : {&used, &fresh}) f->feed({0.0F, 3.0F, 2.0F});
    EXPECT_EQ(used.detector.recordCount(), fresh.detector.recordCount());
    EXPECT_EQ(used.detector.ended(), fresh.detector.ended());
    EXPECT_EQ(used.records[0].interval, fresh.records[0].interval);
}

}  // namespace
}  // namespace beatatlas
