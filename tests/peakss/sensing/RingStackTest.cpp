// SPDX-License-Identifier: MIT
#include "peakss/sensing/RingStack.h"

#include <gtest/gtest.h>

#include "peakss/sensing/PeakBuffer.h"

namespace {

using peakss::RingStack;

TEST(RingStackTest, RemembersEntriesFromTheNewestBack) {
    RingStack<int> ring;
    ring.create(4);
    for (const int value : {1, 2, 3}) ring.push(value);
    EXPECT_EQ(ring.count(), 3);
    EXPECT_EQ(ring.back(0), 3);
    EXPECT_EQ(ring.back(1), 2);
    EXPECT_EQ(ring.back(2), 1);
}

TEST(RingStackTest, OverwritesTheOldestWhenFull) {
    RingStack<int> ring;
    ring.create(3);
    for (int value = 1; value <= 7; ++value) ring.push(value);
    EXPECT_EQ(ring.count(), 3);
    EXPECT_EQ(ring.back(0), 7);
    EXPECT_EQ(ring.back(2), 5);
}

TEST(RingStackTest, ClearEmptiesAndKeepsTheCapacity) {
    RingStack<int> ring;
    ring.create(3);
    ring.push(1);
    ring.clear();
    EXPECT_EQ(ring.count(), 0);
    EXPECT_EQ(ring.capacity(), 3);
    ring.push(9);
    EXPECT_EQ(ring.back(0), 9);
}

TEST(RingStackTest, CreateAgainStartsOver) {
    RingStack<peakss::PeakInfo> ring;
    ring.create(2);
    ring.push({5, 1.0F, 2.0F});
    ring.create(1);
    EXPECT_EQ(ring.count(), 0);
    EXPECT_EQ(ring.capacity(), 1);
    EXPECT_EQ(ring.back(0).pos, 0);
}

TEST(RingStackTest, RingWithoutCapacityHoldsNothing) {
    RingStack<int> ring;
    ring.push(1);
    EXPECT_EQ(ring.count(), 0);
    ring.create(-3);
    ring.push(1);
    EXPECT_EQ(ring.count(), 0);
}

}  // namespace
