// SPDX-License-Identifier: MIT
// Oracle: the plain operation on each level.
#include "peakss/sensing/levelLanes.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "dsp/TestNoise.h"
#include "support/RoundTowardZero.h"
#include "support/VectorForms.h"

namespace {

using beatatlas::test::FormScope;
using beatatlas::test::formsOfThisMachine;
using beatatlas::test::nameOf;
using beatatlas::test::whiteNoise;

constexpr int kMost = 70;
constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

class LevelLanesTest : public beatatlas::test::RoundTowardZero {};

TEST_F(LevelLanesTest, LoudestLevelIsFoundWhereverItLies) {
    for (const auto form : formsOfThisMachine()) {
        SCOPED_TRACE(nameOf(form));
        const FormScope scope(form);
        for (int n = 0; n <= kMost; ++n) {
            std::vector<float> levels(static_cast<std::size_t>(n), 0.25F);
            for (float& level : levels) {
                level = 0.75F;
                EXPECT_EQ(peakss::loudestLevel(levels.data(), n), 0.75F) << n;
                level = kNoNumber;
                EXPECT_EQ(peakss::loudestLevel(levels.data(), n), n == 1 ? 0.0F : 0.25F) << n;
                level = 0.25F;
            }
        }
        const float negative[] = {-1.0F, -2.0F};
        EXPECT_EQ(peakss::loudestLevel(negative, 2), 0.0F);
    }
}

TEST_F(LevelLanesTest, DifferencesAreThoseOfEachLevel) {
    const std::vector<float> noise = whiteNoise(2 * kMost, 3);
    for (const auto form : formsOfThisMachine()) {
        SCOPED_TRACE(nameOf(form));
        const FormScope scope(form);
        for (int n = 0; n <= kMost; ++n) {
            std::vector<float> out(kMost + 1, -9.0F);
            peakss::subtractLevels(noise.data() + 9, noise.data(), out.data(), n);
            for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i)
                EXPECT_EQ(out[i], noise[i + 9] - noise[i]) << n << ", " << i;
            EXPECT_EQ(out[static_cast<std::size_t>(n)], -9.0F);
        }
    }
}

TEST_F(LevelLanesTest, WhatIsAboveTheMeanIsNeverNegative) {
    std::vector<float> levels = whiteNoise(kMost, 4);
    levels[5] = levels[44] = kNoNumber;
    const std::vector<float> noise = whiteNoise(kMost + 1, 5);
    for (const auto form : formsOfThisMachine()) {
        SCOPED_TRACE(nameOf(form));
        const FormScope scope(form);
        for (int n = 0; n <= kMost; ++n) {
            std::vector<float> sums = noise;
            peakss::subtractMeans(levels.data(), sums.data(), n, 9);
            for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) {
                const float above = levels[i] - (noise[i] / 9.0F);
                EXPECT_EQ(sums[i], above >= 0.0F ? above : 0.0F) << n << ", " << i;
            }
            EXPECT_EQ(sums[static_cast<std::size_t>(n)], noise[static_cast<std::size_t>(n)]);
        }
    }
}

}  // namespace
