// SPDX-License-Identifier: MIT
#include "peakss/grid/BpmCountTbl.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace {

using peakss::BeatInfo;
using peakss::BeatList;
using peakss::BpmCountTbl;

constexpr int kNoLimit = std::numeric_limits<int>::max();

BeatInfo beat(int pos, float interval) {
    BeatInfo info;
    info.pos = pos;
    info.interval = interval;
    return info;
}

// One beat each second at 48 kHz, with the given intervals in ms.
BeatList beatsOf(const std::vector<float>& intervals) {
    BeatList list;
    for (const float interval : intervals)
        list.push_back(beat(static_cast<int>(list.size()) * 48000, interval));
    return list;
}

class BpmCountTblTest : public beatatlas::test::RoundTowardZero {
protected:
    void SetUp() override {
        RoundTowardZero::SetUp();
        coarse_.create(400, 0);
        fine_.create(4000, 1);
    }

    BpmCountTbl coarse_;
    BpmCountTbl fine_;
};

TEST_F(BpmCountTblTest, EmptyTableHasNoWinner) {
    EXPECT_EQ(coarse_.getAverageIndex(), -1);
    EXPECT_EQ(fine_.getAverageIndex(128, 0), -1);
}

TEST_F(BpmCountTblTest, TableNeverCreatedHasNoWinner) {
    BpmCountTbl table;
    EXPECT_EQ(table.getAverageIndex(), -1);
    EXPECT_EQ(table.getAverageIndex(128, -1), -1);
    EXPECT_EQ(table.count(beatsOf({500.0F}), 0, kNoLimit), 1);
    EXPECT_EQ(table.getAverageIndex(), -1);
}

TEST_F(BpmCountTblTest, CreateWithNegativeSizesMakesAnEmptyTable) {
    fine_.create(-5, -3);
    EXPECT_EQ(fine_.slots(), 0);
    EXPECT_EQ(fine_.intervalToSlot(500.0), 120);
    EXPECT_EQ(fine_.getAverageIndex(), -1);
}

TEST_F(BpmCountTblTest, CreateAgainDropsHitsAndResolution) {
    fine_.count(beatsOf({500.0F}), 0, kNoLimit);
    fine_.create(400, 0);
    EXPECT_EQ(fine_.slots(), 400);
    EXPECT_EQ(fine_.getAverageIndex(), -1);
    EXPECT_EQ(fine_.intervalToSlot(500.0), 120);
}

TEST_F(BpmCountTblTest, LowestOfEquallyCommonSlotsWins) {
    coarse_.count(beatsOf({500.0F, 400.0F, 400.0F, 500.0F}), 0, kNoLimit);
    EXPECT_EQ(coarse_.hits(120), 2);
    EXPECT_EQ(coarse_.hits(150), 2);
    EXPECT_EQ(coarse_.getAverageIndex(), 120);
}

TEST_F(BpmCountTblTest, CommonestSlotWinsOverALowerOne) {
    coarse_.count(beatsOf({500.0F, 400.0F, 400.0F}), 0, kNoLimit);
    EXPECT_EQ(coarse_.getAverageIndex(), 150);
}

// 60000 / 468.75 is exactly 128.
TEST_F(BpmCountTblTest, IntervalCountsInItsSlotOfEachResolution) {
    const BeatList list = beatsOf({468.75F});
    coarse_.count(list, 0, kNoLimit);
    fine_.count(list, 0, kNoLimit);
    EXPECT_EQ(coarse_.hits(128), 1);
    EXPECT_EQ(fine_.hits(1280), 1);
    EXPECT_EQ(coarse_.getAverageIndex(), 128);
    EXPECT_EQ(fine_.getAverageIndex(128, 0), 1280);
}

TEST_F(BpmCountTblTest, TempoIsRoundedHalfUp) {
    EXPECT_EQ(fine_.intervalToSlot(60000.0 / 128.04), 1280);
    EXPECT_EQ(fine_.intervalToSlot(60000.0 / 128.0501), 1281);
    EXPECT_EQ(coarse_.intervalToSlot(60000.0 / 127.49), 127);
    // 60000 / 960 = 62.5 exactly.
    EXPECT_EQ(coarse_.intervalToSlot(960.0), 63);
    // 60000 / 640 = 93.75 exactly: 937.5 tenths, and a half is rounded up.
    EXPECT_EQ(fine_.intervalToSlot(640.0), 938);
}

// 60000 / 302.800903f = 198.1500028 BPM, just above the border between two slots; in single
// precision, rounded toward zero, the product falls below it.
TEST_F(BpmCountTblTest, IntervalIsWidenedBeforeTheDivision) {
    fine_.count(beatsOf({302.800903F}), 0, kNoLimit);
    EXPECT_EQ(fine_.getAverageIndex(), 1982);
}

TEST_F(BpmCountTblTest, ShortSpanCountsTheFirstBeatOnly) {
    const BeatList list = beatsOf({500.0F, 500.0F, 500.0F});
    EXPECT_EQ(coarse_.count(list, 0, 47999), 1);
    EXPECT_EQ(coarse_.hits(120), 1);
    EXPECT_EQ(coarse_.count(list, 1, 0), 2);
    EXPECT_EQ(coarse_.hits(120), 1);
}

TEST_F(BpmCountTblTest, BeatExactlyAtTheSpanIsCounted) {
    const BeatList list = beatsOf({500.0F, 500.0F, 500.0F});
    EXPECT_EQ(coarse_.count(list, 0, 48000), 2);
    EXPECT_EQ(coarse_.hits(120), 2);
}

TEST_F(BpmCountTblTest, WholeListIsCountedWhenTheSpanCoversIt) {
    EXPECT_EQ(coarse_.count(beatsOf({500.0F, 500.0F, 500.0F}), 0, 96000), 3);
    EXPECT_EQ(coarse_.hits(120), 3);
}

TEST_F(BpmCountTblTest, CountClearsTheStretchBefore) {
    coarse_.count(beatsOf({500.0F, 500.0F}), 0, kNoLimit);
    coarse_.count(beatsOf({400.0F}), 0, kNoLimit);
    EXPECT_EQ(coarse_.hits(120), 0);
    EXPECT_EQ(coarse_.getAverageIndex(), 150);
    coarse_.clearTbl();
    EXPECT_EQ(coarse_.getAverageIndex(), -1);
}

// The window of a 0-digit winner in a 1-digit table: 127.0 up to 128.9 BPM.
TEST_F(BpmCountTblTest, FineSearchCoversOneCoarseSlotToEachSide) {
    const auto winnerOf = [this](double bpm) {
        fine_.count(beatsOf({static_cast<float>(60000.0 / bpm)}), 0, kNoLimit);
        return fine_.getAverageIndex(128, 0);
    };
    EXPECT_EQ(winnerOf(126.92), -1);
    EXPECT_EQ(winnerOf(127.02), 1270);
    EXPECT_EQ(winnerOf(128.92), 1289);
    EXPECT_EQ(winnerOf(129.02), -1);
}

// 60000 / 0.9 BPM = 66666.67 ms lies in slot 9, 1.0 BPM in slot 10, 0 BPM is reached by an endless
// interval.
TEST_F(BpmCountTblTest, FineSearchAroundZeroBeginsAtTheFirstSlot) {
    const float endless = std::numeric_limits<float>::infinity();
    fine_.count(beatsOf({60000.0F, 60000.0F, 66000.0F, endless, endless, endless}), 0, kNoLimit);
    EXPECT_EQ(fine_.hits(0), 3);
    EXPECT_EQ(fine_.hits(10), 2);
    EXPECT_EQ(fine_.hits(9), 1);
    EXPECT_EQ(fine_.getAverageIndex(0, 0), 0);
    fine_.count(beatsOf({60000.0F, 60000.0F, 66000.0F}), 0, kNoLimit);
    EXPECT_EQ(fine_.getAverageIndex(0, 0), 9);
}

TEST_F(BpmCountTblTest, FineSearchStopsAtTheEndOfTheTable) {
    fine_.count(beatsOf({static_cast<float>(60000.0 / 399.92)}), 0, kNoLimit);
    EXPECT_EQ(fine_.getAverageIndex(400, 0), 3999);
    EXPECT_EQ(fine_.getAverageIndex(402, 0), -1);
}

TEST_F(BpmCountTblTest, SearchAroundASlotOfNoCoarserTableCoversEverything) {
    fine_.count(beatsOf({500.0F}), 0, kNoLimit);
    EXPECT_EQ(fine_.getAverageIndex(3000, 1), 1200);
    EXPECT_EQ(fine_.getAverageIndex(3000, 2), 1200);
    EXPECT_EQ(fine_.getAverageIndex(300, 0), -1);
}

TEST_F(BpmCountTblTest, SearchAroundAbsurdTempiStaysInsideTheTable) {
    fine_.count(beatsOf({500.0F}), 0, kNoLimit);
    EXPECT_EQ(fine_.getAverageIndex(kNoLimit, 0), -1);
    EXPECT_EQ(fine_.getAverageIndex(std::numeric_limits<int>::min(), 0), -1);
}

// 150 ms is 400 BPM, the first slot outside; 0 ms and not-a-number have no tempo; a negative tempo
// has no slot.
TEST_F(BpmCountTblTest, TempiOutsideTheTableCountNowhere) {
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const BeatList list = beatsOf({150.0F, 0.0F, notANumber, -500.0F, 1e-30F, 500.0F});
    for (int first = 0; first < 5; ++first) {
        EXPECT_EQ(coarse_.count(list, first, 0), first + 1);
        EXPECT_EQ(coarse_.getAverageIndex(), -1) << "beat " << first;
    }
    EXPECT_EQ(coarse_.count(list, 0, kNoLimit), 6);
    EXPECT_EQ(coarse_.getAverageIndex(), 120);
    EXPECT_EQ(coarse_.hits(120), 1);
}

// −0.05 … −1.4 BPM: trunc(−1.4 × 10 + 5) = −9, and −9 / 10 truncates to slot 0; at −1.6 BPM it is
// −11 / 10 = −1.
TEST_F(BpmCountTblTest, SlightlyNegativeTempiCountInTheFirstSlot) {
    coarse_.count(beatsOf({-60000.0F / 1.4F}), 0, kNoLimit);
    EXPECT_EQ(coarse_.hits(0), 1);
    coarse_.count(beatsOf({-60000.0F / 1.6F}), 0, kNoLimit);
    EXPECT_EQ(coarse_.getAverageIndex(), -1);
}

TEST_F(BpmCountTblTest, FirstOutsideTheListCountsNothing) {
    const BeatList list = beatsOf({500.0F, 500.0F});
    EXPECT_EQ(coarse_.count(list, 2, kNoLimit), 2);
    EXPECT_EQ(coarse_.count(list, -1, kNoLimit), 2);
    EXPECT_EQ(coarse_.count({}, 0, kNoLimit), 0);
    EXPECT_EQ(coarse_.getAverageIndex(), -1);
}

// From one end of int32 to the other the distance needs 33 bits.
TEST_F(BpmCountTblTest, DistancesBeyond31BitsDoNotWrap) {
    const BeatList list = {beat(std::numeric_limits<int>::min(), 500.0F), beat(kNoLimit, 500.0F)};
    EXPECT_EQ(coarse_.count(list, 0, kNoLimit), 1);
    EXPECT_EQ(coarse_.hits(120), 1);
}

// An irregular player around 128 BPM: the fine search must find the tempo he returns to, not a lone
// far outlier.
TEST_F(BpmCountTblTest, FindsTheTempoOfAnUnsteadyPlayer) {
    const BeatList list =
        beatsOf({468.0F, 468.75F, 470.0F, 468.75F, 466.0F, 468.75F, 333.0F, 334.0F, 469.2F});
    coarse_.count(list, 0, kNoLimit);
    fine_.count(list, 0, kNoLimit);
    EXPECT_EQ(coarse_.getAverageIndex(), 128);
    EXPECT_EQ(fine_.getAverageIndex(coarse_.getAverageIndex(), 0), 1280);
}

}  // namespace
