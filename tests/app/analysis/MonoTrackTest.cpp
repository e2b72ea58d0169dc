// SPDX-License-Identifier: MIT
#include "analysis/MonoTrack.h"

#include <limits>

#include <gtest/gtest.h>

namespace app {
namespace {

std::vector<float> gathered(const media::StereoBlock& block) {
    MonoGatherer gatherer;
    gatherer.put(block);
    return gatherer.whole(44100).samples;
}

TEST(MonoGatherer, TakesTheMeanOfBothSidesInSixteenBitScale) {
    EXPECT_EQ(gathered({{0.5F, 1.0F / 32768.0F, -1.0F}, {-0.25F, 0.0F, -1.0F}}),
              (std::vector<float>{4096.0F, 0.5F, -32768.0F}));
}

TEST(MonoGatherer, ClipsEachSideWhereItIsLouderThanFullScale) {
    EXPECT_EQ(gathered({{1.0F, 1.5F, -9.0F}, {0.0F, 0.0F, 0.0F}}),
              (std::vector<float>{16383.5F, 16383.5F, -16384.0F}));
}

TEST(MonoGatherer, MakesFiniteSamplesOfInfiniteOnesAndSilenceOfWhatIsNoNumber) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float none = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(gathered({{infinity, -infinity, none}, {0.0F, 0.0F, none}}),
              (std::vector<float>{16383.5F, -16384.0F, 0.0F}));
}

}  // namespace
}  // namespace app
