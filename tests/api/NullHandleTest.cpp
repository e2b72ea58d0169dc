// SPDX-License-Identifier: MIT
// Every export, called with a null handle, returns its neutral value and touches no argument.
#include <array>

#include <gtest/gtest.h>

#include "beatatlas/beatatlas.hpp"

namespace {

std::array<float, 4> samples{1.0F, 2.0F, 3.0F, 4.0F};

TEST(NullHandleTest, ReleaseDoesNothing) {
    BA_Release(nullptr);
}

TEST(NullHandleTest, IsNotAnalyzed) {
    EXPECT_FALSE(BA_Analyzed(nullptr));
}

TEST(NullHandleTest, FeedingDoesNothing) {
    BA_SetSamplePre(nullptr, samples.data(), samples.data(), 4);
    BA_SetSample(nullptr, samples.data(), samples.data(), 4);
    BA_SetSample(nullptr, nullptr, nullptr, 4);
}

TEST(NullHandleTest, TempoAndBeatsAreNone) {
    EXPECT_EQ(BA_GetBpm(nullptr), 0);
    EXPECT_EQ(BA_GetBeatNum(nullptr), 0);
    BA_BeatInfo beat{1, 2, 3};
    BA_GetBeatList(nullptr, &beat);
    EXPECT_EQ(beat.pos, 1);
    EXPECT_EQ(beat.beatNum, 2);
    EXPECT_EQ(beat.bpm, 3);
}

TEST(NullHandleTest, WavesHaveNoPoints) {
    BA_WaveInfo point{7.0F, 7};
    EXPECT_EQ(BA_GetLoudWave(nullptr, &point, 0), 0);
    EXPECT_EQ(BA_GetDotsWave(nullptr, &point, 0), 0);
    EXPECT_EQ(BA_GetZoomWave(nullptr, &point), 0);
    EXPECT_EQ(BA_GetZoomWave(nullptr, nullptr), 0);
    EXPECT_EQ(point.level, 7.0F);
    EXPECT_EQ(point.color, 7);
}

TEST(NullHandleTest, KeyResultsAreZeroAndUnwritten) {
    double score = 5.0;
    int number = 5;
    EXPECT_EQ(BA_GetMainKey(nullptr), 0);
    EXPECT_EQ(BA_GetKeyPoint(nullptr, &score), 0);
    EXPECT_EQ(BA_GetKeyRank(nullptr, &number), 0);
    EXPECT_EQ(BA_GetNoteEncount(nullptr, &number), 0);
    EXPECT_EQ(BA_GetNoteEncountVal(nullptr, &score), 0);
    EXPECT_EQ(score, 5.0);
    EXPECT_EQ(number, 5);
}

TEST(NullHandleTest, UtilitiesDoNothing) {
    std::array<float, 4> out{9.0F, 9.0F, 9.0F, 9.0F};
    BA_Resample(nullptr, out.data(), 4, samples.data(), 4, 1.0F, 1, 0);
    BA_CutBeats(nullptr, out.data(), samples.data(), 4, 44100.0F, 1, 0);
    EXPECT_EQ(out, (std::array<float, 4>{9.0F, 9.0F, 9.0F, 9.0F}));
    EXPECT_EQ(BA_PitchDetect(nullptr, samples.data(), 4, 44100.0F, 1, 0), 0.0F);
    EXPECT_EQ(BA_GetKey(nullptr, samples.data(), 4, 44100.0F, 440.0F, 1, 0), 0);
}

}  // namespace
