// SPDX-License-Identifier: MIT
#include "click/ClickMixer.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace app {
namespace {

using testing::Each;
using testing::FloatNear;

constexpr int kRate = 44100;
constexpr double kOneDbBelowFull = 0.8913;

media::StereoBlock constant(std::size_t frames, float left, float right) {
    media::StereoBlock block;
    block.left.assign(frames, left);
    block.right.assign(frames, right);
    return block;
}

std::vector<float> mixed(ClickMixer mixer, std::size_t frames, std::size_t stretch) {
    std::vector<float> left;
    for (std::size_t at = 0; at < frames; at += stretch) {
        media::StereoBlock block = constant(std::min(stretch, frames - at), 0.25F, 0.25F);
        mixer.mix(block);
        left.insert(left.end(), block.left.begin(), block.left.end());
    }
    return left;
}

// 1 dB: 10^(-1/20) = 0.8913, of which half is the music's and half the click's.
TEST(ClickMixer, BeginsAClickAtItsFullHeightWithTheFrameOfTheBeat) {
    ClickMixer mixer({{1000, true}}, kRate, 0.5, 0.0, ClickPlace::over);
    media::StereoBlock block = constant(4000, 0.0F, 0.0F);
    mixer.mix(block);
    EXPECT_THAT(std::vector(block.left.begin(), block.left.begin() + 1000), Each(0.0F));
    EXPECT_NEAR(block.left[1000], 0.5 * kOneDbBelowFull, 1e-3);
    EXPECT_EQ(block.right, block.left);
    const std::size_t end = 1000 + kRate / 20;
    EXPECT_THAT(std::vector(block.left.begin() + end, block.left.end()), Each(0.0F));
}

TEST(ClickMixer, MakesDownbeatsSixDecibelsLouder) {
    ClickMixer mixer({{0, true}, {5000, false}}, kRate, 0.1, 0.0, ClickPlace::over);
    media::StereoBlock block = constant(6000, 0.0F, 0.0F);
    mixer.mix(block);
    EXPECT_FLOAT_EQ(block.left[0], 0.1F);
    EXPECT_FLOAT_EQ(block.left[5000], 0.05F);
}

// 20 dB is a factor of ten: 0.5 and 0.05 leave half of the way to full scale.
TEST(ClickMixer, KeepsTheMusicAsItIsWhereThereIsRoom) {
    ClickMixer mixer({{0, true}}, kRate, 0.5, -20.0, ClickPlace::over);
    EXPECT_EQ(mixer.musicGain(), 1.0);
    media::StereoBlock block = constant(4000, 0.5F, -0.5F);
    mixer.mix(block);
    EXPECT_FLOAT_EQ(block.left[0], 0.55F);
    EXPECT_FLOAT_EQ(block.right[0], -0.45F);
    EXPECT_EQ(block.left[3999], 0.5F);
}

TEST(ClickMixer, NeverComesCloserToFullScaleThanOneDecibel) {
    for (const double level : {-60.0, 0.0, 12.0, 40.0}) {
        for (const auto place : {ClickPlace::over, ClickPlace::alone, ClickPlace::apart}) {
            ClickMixer mixer({{0, true}, {10, true}, {500, false}}, kRate, 2.0, level, place);
            media::StereoBlock block = constant(2000, 7.0F, 7.0F);
            mixer.mix(block);
            EXPECT_THAT(block.left, Each(FloatNear(0.0F, 0.8914F)));
            EXPECT_THAT(block.right, Each(FloatNear(0.0F, 0.8914F)));
        }
    }
}

TEST(ClickMixer, LeavesTheMusicOut) {
    ClickMixer mixer({{5, true}}, kRate, 0.5, 0.0, ClickPlace::alone);
    media::StereoBlock block = constant(10, 0.5F, -0.5F);
    mixer.mix(block);
    EXPECT_THAT(std::vector(block.left.begin(), block.left.begin() + 5), Each(0.0F));
    EXPECT_FLOAT_EQ(block.left[5], 0.5F);
    EXPECT_EQ(block.right, block.left);
}

TEST(ClickMixer, PutsTheMusicOnTheLeftAndTheClicksOnTheRight) {
    ClickMixer mixer({{5, true}}, kRate, 0.6, 0.0, ClickPlace::apart);
    media::StereoBlock block = constant(10, 0.6F, 0.2F);
    mixer.mix(block);
    EXPECT_THAT(block.left, Each(FloatNear(0.4F, 1e-6F)));
    EXPECT_THAT(std::vector(block.right.begin(), block.right.begin() + 5), Each(0.0F));
    EXPECT_FLOAT_EQ(block.right[5], 0.6F);
}

TEST(ClickMixer, DoesNotDependOnTheLengthOfTheStretches) {
    const std::vector<Click> clicks = {{0, false}, {777, true}, {1500, false}};
    const ClickMixer mixer(clicks, kRate, 0.25, 3.0, ClickPlace::over);
    const std::vector<float> whole = mixed(mixer, 5000, 5000);
    for (const std::size_t stretch : {1, 7, 777, 1024})
        EXPECT_EQ(mixed(mixer, 5000, stretch), whole) << stretch;
}

TEST(ClickMixer, MakesFiniteSoundOfEverySample) {
    media::StereoBlock block = constant(3, std::numeric_limits<float>::quiet_NaN(), 1e30F);
    block.left[1] = -std::numeric_limits<float>::infinity();
    EXPECT_EQ(louderPeak(0.5, block), 2.0);
    ClickMixer({}, kRate, 2.0, 0.0, ClickPlace::over).mix(block);
    EXPECT_EQ(block.left[0], 0.0F);
    EXPECT_NEAR(block.left[1], -kOneDbBelowFull / 2.0, 1e-3);
    EXPECT_NEAR(block.right[2], kOneDbBelowFull / 2.0, 1e-3);
}

TEST(ClickMixer, ClicksInSilenceToo) {
    ClickMixer mixer({{0, true}}, kRate, 0.0, 0.0, ClickPlace::over);
    media::StereoBlock block = constant(1, 0.0F, 0.0F);
    mixer.mix(block);
    EXPECT_NEAR(block.left[0], kOneDbBelowFull, 1e-4);
}

}  // namespace
}  // namespace app
