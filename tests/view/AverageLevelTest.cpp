// SPDX-License-Identifier: MIT
#include "view/AverageLevel.h"

#include <vector>

#include <gtest/gtest.h>

#include "support/RoundTowardZero.h"

namespace beatatlas {
namespace {

class AverageLevelTest : public test::RoundTowardZero {
protected:
    AverageLevelTest() { average.create(10); }

    std::optional<AverageLevel::Average> put(float value, bool peak, std::size_t samples = 10) {
        return put(std::vector<float>(samples, value), peak);
    }

    /** Samples in 16-bit scale, as the averages are. */
    std::optional<AverageLevel::Average> put(std::vector<float> chunk, bool peak) {
        for (float& sample : chunk) sample /= 32768.0F;
        return average.put(chunk.data(), static_cast<int>(chunk.size()), peak);
    }

    AverageLevel average;
};

TEST_F(AverageLevelTest, ComesWithEveryNinthChunk) {
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 8; ++i) ASSERT_FALSE(put(100.0F, false));
        const auto ninth = put(190.0F, false);
        ASSERT_TRUE(ninth);
        EXPECT_EQ(ninth->level, 110.0F);  // (8 × 100 + 190) / 9
        EXPECT_FALSE(ninth->merges);
    }
}

TEST_F(AverageLevelTest, TakesMagnitudes) {
    const auto found = put({-1.0F, 2.0F, -3.0F, 4.0F}, true);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->level, 1.0F);
}

TEST_F(AverageLevelTest, ComesAtOnceWithAPeak) {
    put(100.0F, false);
    const auto cut = put(300.0F, true);
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->level, 200.0F);
    EXPECT_FALSE(cut->merges);
    for (int i = 0; i < 8; ++i) ASSERT_FALSE(put(50.0F, false)) << "the count starts over";
}

TEST_F(AverageLevelTest, MergesTheAverageAfterTheOneAPeakCutShort) {
    ASSERT_TRUE(put(1.0F, true));
    for (int i = 0; i < 8; ++i) put(1.0F, false);
    const auto after = put(1.0F, false);
    ASSERT_TRUE(after);
    EXPECT_TRUE(after->merges);
    for (int i = 0; i < 8; ++i) put(1.0F, false);
    EXPECT_FALSE(put(1.0F, false)->merges);
}

TEST_F(AverageLevelTest, MergesAgainWhenAMergingAverageIsCutShortToo) {
    EXPECT_FALSE(put(1.0F, true)->merges);
    EXPECT_TRUE(put(1.0F, true)->merges);
    EXPECT_TRUE(put(1.0F, true)->merges);
}

TEST_F(AverageLevelTest, DividesByWholeBlocksEvenForAShortChunk) {
    const auto last = put(100.0F, true, 5);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->level, 50.0F);
}

// 16777216 + 1 is cut to 16777216 in float: one by one, small samples after a huge one vanish.
TEST_F(AverageLevelTest, SumsInSinglePrecisionOneByOne) {
    std::vector<float> chunk(10, 1.0F);
    chunk[0] = 16777216.0F;
    const auto found = put(chunk, true);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->level, 16777216.0F / 10.0F);
}

TEST_F(AverageLevelTest, ResetEqualsNew) {
    put(1000.0F, true);
    put(1000.0F, false);
    average.reset();
    for (int i = 0; i < 8; ++i) ASSERT_FALSE(put(1.0F, false));
    const auto first = put(1.0F, false);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->level, 1.0F);
    EXPECT_FALSE(first->merges);
}

}  // namespace
}  // namespace beatatlas
