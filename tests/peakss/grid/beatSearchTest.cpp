// SPDX-License-Identifier: MIT
#include "peakss/grid/beatSearch.h"

#include <limits>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using beatatlas::test::beatsAt;
using beatatlas::test::beatsOfIntervals;
using beatatlas::test::kHighest;
using beatatlas::test::kLowest;
using beatatlas::test::kRate;
using peakss::BeatList;
using peakss::BpmCountTbl;

constexpr int kUntouched = 77;

class BeatSearchTest : public beatatlas::test::RoundTowardZero {
protected:
    int near(const BeatList& list, int pos, int tolerance) {
        index_ = kUntouched;
        return peakss::findNearPos(list, pos, tolerance, &index_);
    }
    int onRaster(const BeatList& list, int pos, int tolerance) {
        index_ = kUntouched;
        return peakss::findXPos(list, pos, tolerance, kRate, &index_);
    }

    int index_ = kUntouched;
};

TEST_F(BeatSearchTest, FindsFirstBeatOfATempoSlotFromTheStartOn) {
    BpmCountTbl coarse;
    coarse.create(400, 0);
    BpmCountTbl fine;
    fine.create(4000, 1);
    const BeatList list = beatsOfIntervals({500.0F, 468.75F, 500.0F});  // 120, 128, 120 BPM
    EXPECT_EQ(peakss::findFirstIdx(list, 0, 128, coarse), 1);
    EXPECT_EQ(peakss::findFirstIdx(list, 1, 120, coarse), 2);
    EXPECT_EQ(peakss::findFirstIdx(list, 0, 1280, fine), 1);
    EXPECT_EQ(peakss::findFirstIdx(list, 0, 99, coarse), -1);
    EXPECT_EQ(peakss::findFirstIdx(list, 3, 120, coarse), -1);
    EXPECT_EQ(peakss::findFirstIdx({}, 0, 120, coarse), -1);
}

// 60000 / 75 = 800 BPM lies outside the table of 400.
TEST_F(BeatSearchTest, FindsBeatsOfATempoOutsideTheTable) {
    BpmCountTbl coarse;
    coarse.create(400, 0);
    EXPECT_EQ(peakss::findFirstIdx(beatsOfIntervals({500.0F, 75.0F}), 0, 800, coarse), 1);
}

TEST_F(BeatSearchTest, FindsStartOfTheTrailingRunAtOrBehindAPosition) {
    const BeatList list = beatsAt({10, 20, 20, 30});
    EXPECT_EQ(peakss::findPosAfter(list, 20), 1);
    EXPECT_EQ(peakss::findPosAfter(list, 5), 0);
    EXPECT_EQ(peakss::findPosAfter(list, 31), -1);
    EXPECT_EQ(peakss::findPosAfter({}, 0), -1);
}

TEST_F(BeatSearchTest, FindsFirstOfSeveralBeatsExactlyAtAPosition) {
    const BeatList list = beatsAt({10, 20, 20, 30});
    EXPECT_EQ(peakss::sampleToIndex(list, 20), 1);
    EXPECT_EQ(peakss::sampleToIndex(list, 30), 3);
    EXPECT_EQ(peakss::sampleToIndex(list, 25), -1);
    EXPECT_EQ(peakss::sampleToIndex(list, 31), -1);
    EXPECT_EQ(peakss::sampleToIndex({}, 0), -1);
}

TEST_F(BeatSearchTest, NearestBeatMayLieOnEitherSide) {
    const BeatList list = beatsAt({100, 200});
    EXPECT_EQ(near(list, 130, 80), 100);
    EXPECT_EQ(index_, 0);
    EXPECT_EQ(near(list, 170, 80), 200);
    EXPECT_EQ(index_, 1);
}

TEST_F(BeatSearchTest, EarlierOfTwoEquallyNearBeatsWins) {
    EXPECT_EQ(near(beatsAt({100, 200}), 150, 50), 100);
    EXPECT_EQ(index_, 0);
}

TEST_F(BeatSearchTest, BeatExactlyAtTheToleranceCounts) {
    EXPECT_EQ(near(beatsAt({100}), 150, 50), 100);
    EXPECT_EQ(near(beatsAt({200}), 150, 50), 200);
}

TEST_F(BeatSearchTest, NoBeatWithinTheToleranceWritesNone) {
    EXPECT_EQ(near(beatsAt({100, 200}), 150, 49), -1);
    EXPECT_EQ(index_, -1);
}

TEST_F(BeatSearchTest, EmptyListLeavesTheIndexUntouched) {
    EXPECT_EQ(near({}, 150, 49), -1);
    EXPECT_EQ(index_, kUntouched);
}

TEST_F(BeatSearchTest, NearestBeatNeedsNoIndex) {
    EXPECT_EQ(peakss::findNearPos(beatsAt({100}), 110, 50, nullptr), 100);
}

TEST_F(BeatSearchTest, LastOfSeveralBeatsAtOnePositionStandsForThem) {
    EXPECT_EQ(near(beatsAt({100, 100, 100}), 110, 50), 100);
    EXPECT_EQ(index_, 2);
}

// Behind the position the scan stops at the first beat met, the first of several at one place.
TEST_F(BeatSearchTest, FirstOfSeveralBeatsBehindThePositionStandsForThem) {
    EXPECT_EQ(near(beatsAt({0, 100, 100}), 90, 50), 100);
    EXPECT_EQ(index_, 1);
}

TEST_F(BeatSearchTest, NearestBeatAtTheEndsOfTheNumberRange) {
    const BeatList list = beatsAt({kLowest, kHighest});
    EXPECT_EQ(near(list, kHighest, kHighest), kHighest);
    EXPECT_EQ(index_, 1);
    EXPECT_EQ(near(list, kLowest + 5, 10), kLowest);
    EXPECT_EQ(index_, 0);
    EXPECT_EQ(near(list, 0, 1000), -1);
    EXPECT_EQ(near(list, 0, -5), -1);
}

// 500 ms are 24000 samples, an eighth 3000.
TEST_F(BeatSearchTest, SnapsToTheEighthBeatRasterOfTheBeatBefore) {
    const BeatList list = beatsAt({24000});
    EXPECT_EQ(onRaster(list, 24000 + 6100, 3000), 24000 + 6000);
    EXPECT_EQ(index_, 0);
    EXPECT_EQ(onRaster(list, 24000 + 4500, 3000), 24000 + 6000);  // half an eighth rounds on
    EXPECT_EQ(onRaster(list, 24000, 3000), 24000);
}

TEST_F(BeatSearchTest, SnapsToTheRasterBackFromTheFirstBeat) {
    const BeatList list = beatsAt({24000});
    EXPECT_EQ(onRaster(list, 24000 - 6100, 3000), 24000 - 6000);
    EXPECT_EQ(index_, 0);
}

// Beat 1 at 50000 counts 3000 back: 47000 and 44000; beat 0 counts on to 45000 and 48000.
TEST_F(BeatSearchTest, RasterOfTheNextBeatWinsWhenStrictlyNearer) {
    const BeatList list = beatsAt({24000, 50000});
    EXPECT_EQ(onRaster(list, 46900, 3000), 47000);
    EXPECT_EQ(index_, 1);
    EXPECT_EQ(onRaster(list, 45100, 3000), 45000);
    EXPECT_EQ(index_, 0);
    EXPECT_EQ(onRaster(list, 46000, 3000), 45000);  // both 1000 away: the earlier beat keeps it
    EXPECT_EQ(index_, 0);
}

TEST_F(BeatSearchTest, RasterPointNotNearerThanTheToleranceIsNone) {
    const BeatList list = beatsAt({24000});
    EXPECT_EQ(onRaster(list, 24000 + 6100, 100), -1);
    EXPECT_EQ(index_, kUntouched);
    EXPECT_EQ(onRaster(list, 24000 + 6100, 101), 24000 + 6000);
    EXPECT_EQ(onRaster({}, 100, 100), -1);
}

TEST_F(BeatSearchTest, RasterOfAnAbsurdIntervalIsSafe) {
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    for (const float interval : {0.0F, -1.0F, kNoNumber, kInfinite, 1e38F, 1e-38F}) {
        BeatList list{beatAt(kLowest, interval), beatAt(kHighest, interval)};
        for (const int pos : {kLowest, -5, 0, 100, kHighest}) onRaster(list, pos, 1000);
    }
    // A beat's own position needs no raster.
    EXPECT_EQ(onRaster({beatAt(100, 0.0F)}, 100, 10), 100);
}

}  // namespace
