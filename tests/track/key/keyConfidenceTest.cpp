// SPDX-License-Identifier: MIT
#include "track/key/keyConfidence.h"

#include <gtest/gtest.h>

namespace {

using beatatlas::track::inner::confidenceOfKey;

TEST(KeyConfidence, GrowsWithTheProbability) {
    double last = 0.0;
    for (int i = 0; i <= 1000; ++i) {
        const double confidence = confidenceOfKey(i / 1000.0);
        ASSERT_GE(confidence, last) << i;
        ASSERT_LE(confidence, 1.0);
        last = confidence;
    }
    EXPECT_GT(last, 0.95);
}

// What the tool calls sure is what was right on four of five.
TEST(KeyConfidence, IsSureFromFourFifthsUp) {
    EXPECT_LT(confidenceOfKey(0.79), 0.8);
    EXPECT_GE(confidenceOfKey(0.8), 0.8);
}

TEST(KeyConfidence, OfNoiseIsNextToNothing) {
    EXPECT_EQ(confidenceOfKey(0.08), 0.08);
}

}  // namespace
