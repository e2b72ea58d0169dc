// SPDX-License-Identifier: MIT
#include "track/key/Tuning.h"

#include <cmath>

#include <gtest/gtest.h>

namespace {

using namespace beatatlas::track::inner;

double tuningOf(const std::vector<SpectralPeak>& peaks) {
    Tuning tuning;
    tuning.add(peaks);
    return tuning.semitones();
}

TEST(Tuning, IsTheDistanceToTheGridOfAllNotes) {
    for (const float offset : {-0.45F, -0.25F, 0.0F, 0.1F, 0.45F})
        EXPECT_NEAR(
            tuningOf({{57.0F + offset, 1.0F}, {64.0F + offset, 0.5F}, {69.0F + offset, 0.2F}}),
            static_cast<double>(offset), 1e-5);
}

// Half way round the circle both directions are the same; nearby notes must not cancel out there.
TEST(Tuning, GoesRoundACircle) {
    EXPECT_NEAR(std::abs(tuningOf({{60.49F, 1.0F}, {63.51F, 1.0F}})), 0.5, 1e-4);
    EXPECT_NEAR(tuningOf({{60.48F, 1.0F}, {63.50F, 1.0F}}), 0.49, 1e-4);
}

// Weights are roots of strengths: 1 against 0.5, at right angles.
TEST(Tuning, WeighsStrongNotesMore) {
    EXPECT_NEAR(tuningOf({{60.0F, 1.0F}, {60.25F, 0.25F}}), std::atan(0.5) / (2.0 * 3.14159265),
                1e-5);
}

TEST(Tuning, DoesNotListenToWeakVeryLowOrVeryHighOnes) {
    EXPECT_NEAR(tuningOf({{60.1F, 1.0F}, {60.4F, 0.03F}, {43.3F, 1.0F}, {90.3F, 1.0F}}), 0.1, 1e-5);
}

TEST(Tuning, OfNothingIsThatOfTheGrid) {
    EXPECT_EQ(Tuning().semitones(), 0.0);
}

}  // namespace
