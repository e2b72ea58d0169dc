// SPDX-License-Identifier: MIT
#include "track/evidence/Decimator.h"

#include <vector>

#include <gtest/gtest.h>

#include "support/VectorForms.h"
#include "support/signals.h"

namespace {

using namespace beatatlas::test;
using beatatlas::track::inner::Decimator;

std::vector<float> decimate(const std::vector<float>& samples, std::size_t block) {
    Decimator decimator;
    std::vector<float> out;
    for (std::size_t i = 0; i < samples.size(); i += block) {
        const auto& made = decimator.put(
            samples.data() + i, static_cast<std::int64_t>(std::min(block, samples.size() - i)));
        out.insert(out.end(), made.begin(), made.end());
    }
    const auto& made = decimator.finish();
    out.insert(out.end(), made.begin(), made.end());
    return out;
}

TEST(Decimator, KeepsOneSampleOfEightBegun) {
    EXPECT_EQ(decimate(silence(0), 100).size(), 0U);
    EXPECT_EQ(decimate(silence(1), 100).size(), 1U);
    EXPECT_EQ(decimate(silence(8), 100).size(), 1U);
    EXPECT_EQ(decimate(silence(9), 100).size(), 2U);
    EXPECT_EQ(decimate(silence(1000), 7).size(), 125U);
}

TEST(Decimator, LeavesLowTonesWhereTheyAre) {
    const std::vector<float> tone = sine(44100, 440.0, 44100, 1.0);
    const std::vector<float> out = decimate(tone, 1000);
    for (std::size_t m = 10; m + 10 < out.size(); ++m) ASSERT_NEAR(out[m], tone[8 * m], 0.01) << m;
}

// The new rate, 5512.5 Hz, would show 4 kHz as 1512.5 Hz.
TEST(Decimator, TakesHighTonesAway) {
    const std::vector<float> out = decimate(sine(44100, 4000.0, 44100, 1.0), 1000);
    for (std::size_t m = 10; m + 10 < out.size(); ++m) ASSERT_LT(std::abs(out[m]), 0.01F) << m;
}

TEST(Decimator, GivesTheSameBitsForBlocksOfEverySizeAndInEveryForm) {
    const std::vector<float> noise = whiteNoise(5000, 1.0, 5);
    const std::vector<float> expected = decimate(noise, 5000);
    for (const auto form : formsOfThisMachine()) {
        const FormScope scope(form);
        for (const std::size_t block : {1U, 7U, 64U, 4999U})
            EXPECT_EQ(decimate(noise, block), expected) << nameOf(form) << ' ' << block;
    }
}

}  // namespace
