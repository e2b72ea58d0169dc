// SPDX-License-Identifier: MIT
#include "view/DecimatedDetector.h"

#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"
#include "view/DetectorFeed.h"

namespace beatatlas {
namespace {

using DecimatedDetectorTest = test::RoundTowardZero;

/** Chunks of a multiple of four keep the groups in step with them. */
constexpr std::size_t kChunk = 8;
constexpr int kLong = 1000000;

class Feed : public test::DetectorFeed<DecimatedDetector> {
public:
    using test::DetectorFeed<DecimatedDetector>::DetectorFeed;
    void level(float value, std::size_t samples, std::size_t chunkLen = kChunk) {
        test::DetectorFeed<DecimatedDetector>::level(value, samples, chunkLen);
    }
};

TEST_F(DecimatedDetectorTest, OpensRecordZeroWithTheMaximumOfAGroup) {
    Feed f(kLong);
    f.chunk({400.0F, 500.0F, 450.0F});
    EXPECT_EQ(f.detector.recordCount(), 0);
    f.records.reset();
    f.detector.reset();
    f.chunk({400.0F, 500.0F, 450.0F, 0.0F});
    EXPECT_EQ(f.detector.recordCount(), 1);
    EXPECT_EQ(f.records[0].level900, 500.0F);
}

TEST_F(DecimatedDetectorTest, IsDeafToAHundredthOfFullScale) {
    Feed f(kLong);
    f.level(327.68F, 400);
    EXPECT_EQ(f.detector.recordCount(), 0);
    EXPECT_EQ(f.records[0].level900, 0.01F);
    f.chunk({327.68F, 327.68F, 327.68F, 327.68F, 327.7F, 0.0F, 0.0F, 0.0F});
    EXPECT_EQ(f.detector.recordCount(), 1);
    EXPECT_EQ(f.records[0].level900, 327.7F);
}

TEST_F(DecimatedDetectorTest, LeavesTheFieldsOfTheFullRateDetectorAlone) {
    Feed f(kLong);
    f.level(1000.0F, 800);
    EXPECT_GT(f.detector.recordCount(), 2);
    EXPECT_EQ(f.records[0].level, 0.01F);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(f.records[i].interval, 0);
        EXPECT_EQ(f.records[i].maxpos, 0);
    }
}

// The group that opens record 0 ends at sample 4, where the count starts; the group ending at
// sample 244 has 240.
TEST_F(DecimatedDetectorTest, AcceptsNoPeakBeforeTheLeastInterval) {
    Feed f(kLong);
    f.level(1000.0F, 4);
    f.level(0.0F, 232);
    f.level(1000.0F, 4);
    EXPECT_EQ(f.detector.recordCount(), 1);
    f.level(1000.0F, 4);
    EXPECT_EQ(f.detector.recordCount(), 2);
}

TEST_F(DecimatedDetectorTest, AcceptsAGroupFromTheRatioOfTheHeldLevelUpwards) {
    for (const bool reaches : {true, false}) {
        Feed f(kLong);
        f.level(1000.0F, 4);
        f.level(0.0F, 300);
        f.level(reaches ? 750.0F : 749.9F, 4);
        EXPECT_EQ(f.detector.recordCount(), reaches ? 2 : 1);
    }
}

// The held level goes to the current record itself: record 1 gets the first peak's level, which
// record 0 already had from its opening group, before it was raised.
TEST_F(DecimatedDetectorTest, WritesTheHeldLevelToTheCurrentRecord) {
    Feed f(kLong);
    f.level(1000.0F, 4);
    f.level(1100.0F, 4);
    f.level(0.0F, 296);
    f.level(900.0F, 4);
    ASSERT_EQ(f.detector.recordCount(), 2);
    EXPECT_EQ(f.records[0].level900, 1000.0F);
    EXPECT_EQ(f.records[1].level900, 1100.0F);
    EXPECT_EQ(f.records[2].level900, 900.0F);
}

TEST_F(DecimatedDetectorTest, RaisesTheHeldLevelWithinTheLeastInterval) {
    Feed f(kLong);
    f.level(1000.0F, 4);
    f.level(900.0F, 4);
    EXPECT_EQ(f.records[1].level900, 1000.0F);
    f.level(1001.0F, 4);
    EXPECT_EQ(f.records[1].level900, 1001.0F);
}

// Record 0 opens at sample 4. Count 1284 (321 groups) is held; the group of count 1288 is the first
// step of four, that of 1292 the second, and eight make a decay when both fall in one chunk.
TEST_F(DecimatedDetectorTest, HoldsALevelForItsTimeAndThenDecaysInStepsOfFour) {
    Feed f(kLong);
    f.level(1000.0F, 4);
    f.level(0.0F, 1284, 4);
    f.level(0.0F, 4);
    EXPECT_EQ(f.records[1].level900, 1000.0F);
    f.level(0.0F, 4);
    EXPECT_EQ(f.records[1].level900, 1000.0F);
    f.level(0.0F, 8);
    EXPECT_EQ(f.records[1].level900, 1000.0F * 0.9938303F);
}

/** At 48,000 Hz: one peak of 20000, held past its time by 285 samples, then a chunk of the given
 *  length. */
float heldAfterAChunkPastTheHold(int samples) {
    PeakRecords records;
    records.reset();
    DecimatedDetector detector;
    detector.create(DetectorTiming(48000, kLong), 0.75F);
    std::vector<float> chunk(640, 0.0F);
    chunk[3] = 20000.0F;
    test::putChunk(detector, records, chunk.data(), 640);
    chunk[3] = 0.0F;
    // Count 636 after the first chunk and 82556 after 128 more; the hold ends at 82271.
    for (int i = 0; i < 128; ++i) test::putChunk(detector, records, chunk.data(), 640);
    EXPECT_EQ(records[1].level900, 20000.0F);
    test::putChunk(detector, records, chunk.data(), samples);
    return records[1].level900;
}

// The step of 557 is no multiple of four: it is passed with the 140th group of a chunk, at 560. A
// whole chunk of 640 has no time for a second decay.
TEST_F(DecimatedDetectorTest, DecaysWhenItsStepsOfFourReachOrPassTheDecayStep) {
    EXPECT_EQ(heldAfterAChunkPastTheHold(559), 20000.0F);
    EXPECT_EQ(heldAfterAChunkPastTheHold(560), 20000.0F * 0.9938303F);
    EXPECT_EQ(heldAfterAChunkPastTheHold(640), 20000.0F * 0.9938303F);
}

TEST_F(DecimatedDetectorTest, DecaysToItsFloorAndNoFurther) {
    Feed f(kLong);
    f.level(330.0F, 4);
    f.level(0.0F, 1300);
    f.level(0.0F, 200);
    EXPECT_EQ(f.records[1].level900, 327.68F);
    f.level(327.68F, 4);  // from the floor a group at the floor is a peak
    EXPECT_EQ(f.detector.recordCount(), 2);
}

TEST_F(DecimatedDetectorTest, DropsAGroupThatAChunkCutsShort) {
    Feed f(kLong);
    f.chunk({1000.0F, 0.0F});
    f.chunk({0.0F, 0.0F});
    EXPECT_EQ(f.detector.recordCount(), 0);
}

TEST_F(DecimatedDetectorTest, EndsInAFullChunkWhenTheLastSampleCompletesAGroup) {
    Feed f(8);
    f.level(1000.0F, 10, 10);
    EXPECT_TRUE(f.detector.ended());
    EXPECT_EQ(f.detector.recordCount(), 2);
    EXPECT_EQ(f.records[1].level900, 1000.0F);
}

TEST_F(DecimatedDetectorTest, MissesTheEndInAFullChunkWhenTheLastSampleCompletesNoGroup) {
    Feed f(7);
    f.level(1000.0F, 20, 10);
    EXPECT_FALSE(f.detector.ended());
    EXPECT_EQ(f.detector.recordCount(), 1);
}

TEST_F(DecimatedDetectorTest, EndsInAShortChunkWhateverTheCount) {
    for (const int len : {5, 6, 7, 8}) {
        Feed f(len);
        f.level(1000.0F, static_cast<std::size_t>(len));
        EXPECT_TRUE(f.detector.ended()) << len;
        EXPECT_EQ(f.detector.recordCount(), 2) << len;
    }
}

// The last sample makes a group of its own in a short chunk, with the maximum of what it has.
TEST_F(DecimatedDetectorTest, JudgesTheShortLastGroupByItsOwnMaximum) {
    Feed f(6);
    f.chunk({0.0F, 0.0F, 0.0F, 0.0F, 900.0F, 800.0F});
    EXPECT_TRUE(f.detector.ended());
    EXPECT_EQ(f.records[0].level900, 900.0F);
    EXPECT_EQ(f.detector.recordCount(), 2);
}

TEST_F(DecimatedDetectorTest, ClosesASilentTrackWithoutAPeak) {
    Feed f(8);
    f.level(0.0F, 8);
    EXPECT_TRUE(f.detector.ended());
    EXPECT_EQ(f.detector.recordCount(), 1);
    EXPECT_EQ(f.records[0].level900, 0.01F);
}

// The end is the eighth sample of a chunk of ten. The record opened with the fourth sample, so the
// least interval of 240 is over with the 244th and not sooner.
TEST_F(DecimatedDetectorTest, GoesOnAfterTheEnd) {
    Feed f(8);
    f.chunk({900.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 0.0F});
    EXPECT_EQ(f.detector.recordCount(), 2);
    f.level(0.0F, 226);
    f.level(900.0F, 4, 4);
    EXPECT_EQ(f.detector.recordCount(), 2);
    f.level(900.0F, 4, 4);
    EXPECT_EQ(f.detector.recordCount(), 3);
}

TEST_F(DecimatedDetectorTest, ResetEqualsNew) {
    Feed used(300);
    used.level(1000.0F, 310);
    used.records.reset();
    used.detector.reset();
    Feed fresh(300);
    for (Feed* f : {&used, &fresh}) f->feed({0.0F, 0.0F, 600.0F, 0.0F, 0.0F});
    EXPECT_EQ(used.detector.recordCount(), fresh.detector.recordCount());
    EXPECT_FALSE(used.detector.ended());
    EXPECT_EQ(used.records[0].level900, fresh.records[0].level900);
}

}  // namespace
}  // namespace beatatlas
