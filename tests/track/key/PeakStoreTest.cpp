// SPDX-License-Identifier: MIT
#include "track/key/PeakStore.h"

#include <gtest/gtest.h>

namespace {

using namespace beatatlas::track::inner;

TEST(PeakStore, GivesBackTheFramesInTheirOrder) {
    PeakStore store;
    EXPECT_EQ(store.loudest(), 0.0F);
    store.add(2.0F, {{60.0F, 1.0F}, {64.0F, 0.5F}});
    store.add(3.0F, {});
    store.add(1.0F, {{67.0F, 1.0F}});
    ASSERT_EQ(store.frames(), 3U);
    EXPECT_EQ(store.loudest(), 3.0F);
    EXPECT_EQ(store.top(0), 2.0F);
    EXPECT_EQ(store.top(2), 1.0F);
    ASSERT_EQ(store.peaks(0).size(), 2U);
    EXPECT_EQ(store.peaks(0)[1].pitch, 64.0F);
    EXPECT_TRUE(store.peaks(1).empty());
    ASSERT_EQ(store.peaks(2).size(), 1U);
    EXPECT_EQ(store.peaks(2)[0].pitch, 67.0F);
}

// C3 and C5 weigh exp(−1/2) = 0.61 of middle C, C2 and C6 exp(−2) = 0.135.
TEST(PeakStore, ForgetsWhatNoChromaHears) {
    PeakStore store;
    store.add(1.0F, {{60.0F, 1.0F}, {67.0F, 0.015F}});
    EXPECT_EQ(store.peaks(0).size(), 1U);
    store.add(1.0F, {{60.0F, 1.0F}, {84.0F, 0.16F}, {36.0F, 0.14F}});
    ASSERT_EQ(store.peaks(1).size(), 2U);
    EXPECT_EQ(store.peaks(1)[1].pitch, 84.0F);
}

}  // namespace
