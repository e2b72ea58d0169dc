// SPDX-License-Identifier: MIT
#include "peakss/grid/TempoWindow.h"

#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using beatatlas::test::beatsOfIntervals;
using peakss::BeatList;
using peakss::BpmCountTbl;
using peakss::TempoWindow;

class TempoWindowTest : public beatatlas::test::RoundTowardZero {};

TEST_F(TempoWindowTest, EmptyWindowHasNoTempo) {
    const BeatList list = beatsOfIntervals({500.0F});
    EXPECT_EQ(TempoWindow(list, 400, 0).commonestSlot(), -1);
}

// Beats half a second, 24000 samples, apart: 120, 120, 128, 128, 128 BPM.
TEST_F(TempoWindowTest, CountsTheBeatsUpToTheSpanBehindTheFirst) {
    const BeatList list = beatsOfIntervals({500.0F, 500.0F, 468.75F, 468.75F, 468.75F});
    TempoWindow window(list, 400, 0);
    window.moveTo(0, 48000);
    EXPECT_EQ(window.commonestSlot(), 120);
    window.moveTo(0, 96000);
    EXPECT_EQ(window.commonestSlot(), 128);
    window.moveTo(0, 47999);
    EXPECT_EQ(window.commonestSlot(), 120);
    window.moveTo(3, -5);  // the first beat counts whatever the span
    EXPECT_EQ(window.commonestSlot(), 128);
    window.moveTo(1, 0);
    EXPECT_EQ(window.commonestSlot(), 120);
}

TEST_F(TempoWindowTest, LowestOfEqualsWinsAndTheSearchedRangeIsCutToTheTable) {
    const BeatList list = beatsOfIntervals({468.75F, 500.0F});
    TempoWindow window(list, 400, 0);
    window.moveTo(0, 24000);
    EXPECT_EQ(window.commonestSlot(), 120);
    EXPECT_EQ(window.commonestSlot(121, 9999), 128);
    EXPECT_EQ(window.commonestSlot(-50, 120), -1);
}

TEST_F(TempoWindowTest, TempiOutsideTheTableCountNowhere) {
    const BeatList list =
        beatsOfIntervals({0.0F, 75.0F, -500.0F, std::numeric_limits<float>::quiet_NaN()});
    TempoWindow window(list, 400, 0);
    window.moveTo(0, 1000000);
    EXPECT_EQ(window.commonestSlot(), -1);
    EXPECT_EQ(window.slotOf(1), 800);
}

// Oracle: the plain histogram, built anew for every stretch. Windows jump forth and back, grow and
// shrink.
TEST_F(TempoWindowTest, TellsWhatAFreshHistogramTells) {
    std::mt19937 random(11);
    BeatList list;
    int pos = 0;
    for (int i = 0; i < 300; ++i) {
        pos += static_cast<int>(random() % 5) * 4000;
        list.push_back(beatAt(pos, 300.0F + static_cast<float>(random() % 40)));
    }
    TempoWindow window(list, 400, 0);
    BpmCountTbl fresh;
    fresh.create(400, 0);
    for (int round = 0; round < 500; ++round) {
        const int first = static_cast<int>(random() % 300);
        const int span = static_cast<int>(random() % 400000);
        window.moveTo(first, span);
        fresh.count(list, first, span);
        ASSERT_EQ(window.commonestSlot(), fresh.getAverageIndex());
        window.moveTo(first, span / 2);
        fresh.count(list, first, span / 2);
        ASSERT_EQ(window.commonestSlot(), fresh.getAverageIndex());
    }
}

}  // namespace
