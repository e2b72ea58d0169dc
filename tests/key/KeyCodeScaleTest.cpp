// SPDX-License-Identifier: MIT
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "beatatlas/utilities.h"
#include "key/Progressions.h"
#include "support/RoundTowardZero.h"
#include "support/signals.h"

namespace {

class KeyCodeScaleTest : public beatatlas::test::RoundTowardZero {
protected:
    static int keyOf(std::vector<float>& samples, float rate, float ref = 440.0F,
                     int hopDivisor = 1, int mode = 0) {
        return KeyCodeScale(nullptr, samples.data(), static_cast<long>(samples.size()), rate, ref,
                            hopDivisor, mode, nullptr);
    }
};

TEST_F(KeyCodeScaleTest, FindsAllTwentyFourKeysInEveryMode) {
    for (int key = 0; key < 24; ++key) {
        auto samples = beatatlas::test::monoProgression(key, 8000, 12);
        for (int mode = 0; mode < 5; ++mode)
            EXPECT_EQ(keyOf(samples, 8000.0F, 440.0F, 1, mode), key) << mode;
    }
}

TEST_F(KeyCodeScaleTest, FindsTheKeyOfLongTracks) {
    for (int key : {4, 15}) {
        auto samples = beatatlas::test::monoProgression(key, 44100, 32);
        for (int mode : {1, 4}) EXPECT_EQ(keyOf(samples, 44100.0F, 440.0F, 1, mode), key) << mode;
    }
}

// Tuned a semitone up, 440 × 2^(1/12) = 466.16, everything is one pitch class lower by that
// reference.
TEST_F(KeyCodeScaleTest, CountsKeysFromTheReferencePitch) {
    auto samples = beatatlas::test::monoProgression(3, 8000, 12);
    EXPECT_EQ(keyOf(samples, 8000.0F, 466.1638F), 2);
}

TEST_F(KeyCodeScaleTest, NeverWritesTheRecordTheTextOrTheSamples) {
    auto samples = beatatlas::test::monoProgression(0, 4000, 8);
    const auto before = samples;
    S_KEY_SCALE_RESULT result{};
    std::memset(&result, 0x5A, sizeof result);
    S_KEY_SCALE_RESULT untouched{};
    std::memset(&untouched, 0x5A, sizeof untouched);
    const std::string text = "text";
    const int key = KeyCodeScale(&result, samples.data(), static_cast<long>(samples.size()),
                                 4000.0F, 440.0F, 1, 0, text.c_str());
    EXPECT_EQ(key, keyOf(samples, 4000.0F));
    EXPECT_EQ(std::memcmp(&result, &untouched, sizeof result), 0);
    EXPECT_EQ(samples, before);
}

// Twelve equal strengths score A minor highest.
TEST_F(KeyCodeScaleTest, SilenceIsAMinor) {
    auto samples = beatatlas::test::silence(30000);
    for (int mode = 0; mode < 5; ++mode) EXPECT_EQ(keyOf(samples, 4000.0F, 440.0F, 1, mode), 12);
}

TEST_F(KeyCodeScaleTest, ABufferWithoutAFrameIsLikeSilence) {
    EXPECT_EQ(KeyCodeScale(nullptr, nullptr, 0, 44100.0F, 440.0F, 1, 0, nullptr), 12);
    EXPECT_EQ(KeyCodeScale(nullptr, nullptr, -1, 44100.0F, 440.0F, 1, 0, nullptr), 12);
    auto samples = beatatlas::test::monoProgression(3, 4000, 8);
    for (int divisor :
         {0, -1, 2049, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_EQ(keyOf(samples, 4000.0F, 440.0F, divisor), 12) << divisor;
    samples.resize(6000);
    EXPECT_EQ(keyOf(samples, 4000.0F), 12);
}

TEST_F(KeyCodeScaleTest, NumbersWithoutMeaningAreLikeSilence) {
    auto samples = beatatlas::test::monoProgression(3, 4000, 8);
    const float infinity = std::numeric_limits<float>::infinity();
    for (float bad :
         {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity, 0.0F, -1.0F, 1e-40F}) {
        EXPECT_EQ(keyOf(samples, bad), 12) << bad;
        EXPECT_EQ(keyOf(samples, 4000.0F, bad), 12) << bad;
    }
}

// Hops of 2048 below and of 8192 above keep the frame rate well above the smoothing's 1 Hz.
TEST_F(KeyCodeScaleTest, WorksFromFourThousandToAHundredAndNinetyTwoThousand) {
    for (int rate : {4000, 11025, 22050, 96000, 192000}) {
        const bool isHigh = rate > 44100;
        auto samples = beatatlas::test::monoProgression(20, rate, isHigh ? 6 : 13);
        const int mode = isHigh ? 4 : 0;
        EXPECT_EQ(keyOf(samples, static_cast<float>(rate), 440.0F, 1, mode), 20) << rate;
    }
}

// 11025 / 8192 = 1.35 frames a second: a low-pass at 1 Hz has its pole outside the unit circle
// there, the strengths run out of the floats. The call ends all the same.
TEST_F(KeyCodeScaleTest, FewerThanTwoFramesASecondEndInSomeKey) {
    auto samples = beatatlas::test::monoProgression(20, 11025, 25);
    const int key = keyOf(samples, 11025.0F, 440.0F, 1, 3);
    EXPECT_GE(key, 0);
    EXPECT_LT(key, 24);
}

}  // namespace
