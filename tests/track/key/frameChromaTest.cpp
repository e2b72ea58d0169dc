// SPDX-License-Identifier: MIT
#include "track/key/frameChroma.h"

#include <cmath>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace beatatlas::track::inner;

Chroma chromaOf(const std::vector<SpectralPeak>& peaks, double tuning = 0.0) {
    return foldFrame(peaks, tuning).value();
}

TEST(OctaveWeight, IsGreatestAtMiddleC) {
    EXPECT_EQ(octaveWeight(60.0F), 1.0F);
    EXPECT_NEAR(octaveWeight(72.0F), std::exp(-0.5), 1e-6);
    EXPECT_NEAR(octaveWeight(48.0F), std::exp(-0.5), 1e-6);
    EXPECT_NEAR(octaveWeight(84.2F), std::exp(-2.0), 1e-6);
    EXPECT_NEAR(octaveWeight(20.0F), octaveWeight(28.0F), 1e-9);
    EXPECT_NEAR(octaveWeight(120.0F), octaveWeight(100.0F), 1e-9);
}

TEST(FrameChroma, CountsPitchClassesFromA) {
    EXPECT_EQ(chromaOf({{69.0F, 1.0F}})[0], 1.0F);
    EXPECT_EQ(chromaOf({{57.0F, 1.0F}})[0], 1.0F);
    EXPECT_EQ(chromaOf({{60.0F, 1.0F}})[3], 1.0F);
    EXPECT_EQ(chromaOf({{68.0F, 1.0F}})[11], 1.0F);
    EXPECT_EQ(chromaOf({{28.0F, 1.0F}})[7], 1.0F);  // the lowest, E1
}

TEST(FrameChroma, AddsUpToOne) {
    const Chroma chroma = chromaOf({{60.0F, 1.0F}, {64.0F, 0.5F}, {67.1F, 0.8F}, {71.8F, 0.3F}});
    EXPECT_NEAR(std::accumulate(chroma.begin(), chroma.end(), 0.0F), 1.0F, 1e-6F);
}

// Roots: a note of a quarter of the strength counts half. Weights of 60 and 62: 1 and exp(−1/72).
TEST(FrameChroma, CountsRootsOfStrengths) {
    const float weight = octaveWeight(62.0F);
    const Chroma chroma = chromaOf({{60.0F, 1.0F}, {62.0F, 0.25F / weight}});
    EXPECT_NEAR(chroma[3], 2.0F / 3.0F, 1e-6F);
    EXPECT_NEAR(chroma[5], 1.0F / 3.0F, 1e-6F);
}

// Of several in one semitone the strongest counts, not their sum.
TEST(FrameChroma, TakesTheStrongestOfASemitone) {
    const Chroma one = chromaOf({{60.0F, 0.8F}, {64.0F, 0.8F}});
    const Chroma two = chromaOf({{60.0F, 0.8F}, {60.2F, 0.7F}, {64.0F, 0.8F}});
    EXPECT_EQ(one, two);
}

// Beside the middle of a semitone a peak counts cos²: half at a quarter.
TEST(FrameChroma, CountsLessBesideTheMiddle) {
    const Chroma beside = chromaOf({{60.0F, 1.0F}, {62.25F, 1.0F}});
    const Chroma half = chromaOf({{60.0F, 1.0F}, {62.0F, 0.5F}});
    for (std::size_t i = 0; i < 12; ++i) EXPECT_NEAR(beside[i], half[i], 1e-6F);
}

TEST(FrameChroma, LeavesOutWhatIsATenthOfTheStrongest) {
    const float weight = octaveWeight(67.0F);
    EXPECT_EQ(chromaOf({{60.0F, 1.0F}, {67.0F, 0.099F / weight}})[10], 0.0F);
    EXPECT_GT(chromaOf({{60.0F, 1.0F}, {67.0F, 0.101F / weight}})[10], 0.2F);
}

TEST(FrameChroma, MovesTheGridToTheTuning) {
    const std::vector<SpectralPeak> sharp = {{60.4F, 1.0F}, {64.4F, 0.7F}, {67.4F, 0.6F}};
    const Chroma expected = chromaOf({{60.0F, 1.0F}, {64.0F, 0.7F}, {67.0F, 0.6F}});
    const Chroma moved = chromaOf(sharp, 0.4);
    for (std::size_t i = 0; i < 12; ++i) EXPECT_NEAR(moved[i], expected[i], 1e-5F);
}

TEST(FrameChroma, IsMissingWithoutATone) {
    EXPECT_FALSE(foldFrame({}, 0.0).has_value());
    const std::vector<SpectralPeak> outside = {{20.0F, 1.0F}, {110.0F, 1.0F}};
    EXPECT_FALSE(foldFrame(outside, 0.0).has_value());
}

}  // namespace
