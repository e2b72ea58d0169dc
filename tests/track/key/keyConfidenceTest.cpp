// SPDX-License-Identifier: MIT
#include "track/key/keyConfidence.h"

#include <gtest/gtest.h>

namespace {

using beatatlas::track::inner::confidenceOfKey;

constexpr double kWholeTrack = 180.0;

TEST(KeyConfidence, GrowsWithTheProbability) {
    double last = 0.0;
    for (int i = 0; i <= 1000; ++i) {
        const double confidence = confidenceOfKey(i / 1000.0, kWholeTrack);
        ASSERT_GE(confidence, last) << i;
        ASSERT_LE(confidence, 1.0);
        last = confidence;
    }
    EXPECT_GT(last, 0.95);
}

// What the tool calls sure is what was right on four of five.
TEST(KeyConfidence, IsSureFromFourFifthsUp) {
    EXPECT_LT(confidenceOfKey(0.79, kWholeTrack), 0.8);
    EXPECT_GE(confidenceOfKey(0.8, kWholeTrack), 0.8);
}

TEST(KeyConfidence, OfNoiseIsNextToNothing) {
    EXPECT_EQ(confidenceOfKey(0.08, kWholeTrack), 0.08);
}

// In three seconds of music fewer than half of the likely answers are right, in a minute nearly
// all.
TEST(KeyConfidence, GrowsWithWhatWasHeard) {
    double last = 0.0;
    for (int i = 0; i <= 600; ++i) {
        const double confidence = confidenceOfKey(0.99, i / 10.0);
        ASSERT_GE(confidence, last) << i;
        last = confidence;
    }
    EXPECT_EQ(last, confidenceOfKey(0.99, kWholeTrack));
    EXPECT_LT(confidenceOfKey(0.99, 2.9), 0.5);
    EXPECT_LT(confidenceOfKey(0.99, 11.9), 0.8);
}

TEST(KeyConfidence, IsNoHigherInAShortPieceThanInAWholeTrack) {
    for (const double seconds : {1.0, 5.0, 10.0, 20.0})
        EXPECT_EQ(confidenceOfKey(0.1, seconds), confidenceOfKey(0.1, kWholeTrack));
}

}  // namespace
