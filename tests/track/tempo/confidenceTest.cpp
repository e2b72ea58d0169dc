// SPDX-License-Identifier: MIT
#include "track/tempo/confidence.h"

#include <gtest/gtest.h>

namespace {

using namespace beatatlas::track::inner;

template <class Function>
void expectRising(const Function& function, double from, double to) {
    double last = 0.0;
    for (double value = from; value <= to; value += (to - from) / 500.0) {
        const double confidence = function(value);
        ASSERT_GE(confidence, last) << value;
        ASSERT_LE(confidence, 1.0);
        last = confidence;
    }
    EXPECT_GT(last, 0.9);
}

TEST(TempoConfidence, GrowsWithTheEvidence) {
    expectRising(confidenceOfPulse, 1.0, 50.0);
    expectRising(confidenceOfLevel, 0.0, 1.0);
    expectRising(confidenceOfPhase, 0.0, 1.0);
    expectRising(confidenceOfBars, 0.0, 1.0);
}

}  // namespace
