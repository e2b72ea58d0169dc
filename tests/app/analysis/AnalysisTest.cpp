// SPDX-License-Identifier: MIT
#include "analysis/Analysis.h"

#include <cfenv>

#include <gtest/gtest.h>

#include "beatatlas/beatatlas.hpp"
#include "support/Sounds.h"

namespace app {
namespace {

media::StereoBlock music(int rate, double seconds) {
    const test::Sound sound = test::tone(rate, 1, seconds, 220.0, 12000.0);
    return {sound.channels[0], sound.channels[0]};
}

base::AnalysisOptions viewsOnly() {
    base::AnalysisOptions options;
    options.tempo = base::TempoMode::off;
    options.wantsKey = false;
    return options;
}

TEST(Analysis, FindsTheSameWavesAsAPlainHost) {
    media::StereoBlock block = music(44100, 10.0);
    const int frames = static_cast<int>(block.frames());
    Analysis analysis(viewsOnly(), 44100, frames);
    analysis.put(block);
    ASSERT_TRUE(analysis.isFinished());
    const base::AnalysisResult result = analysis.result();

    const int ownMode = std::fegetround();
    void* session = BA_CreateConst44k(frames, 0, true, true, false);
    BA_SetSample(session, block.left.data(), block.right.data(), frames);
    std::vector<BA_WaveInfo> loud(400);
    std::vector<BA_WaveInfo> zoom(static_cast<std::size_t>(BA_GetZoomWave(session, nullptr)));
    ASSERT_EQ(BA_GetLoudWave(session, loud.data(), 0), 400);
    BA_GetZoomWave(session, zoom.data());
    BA_Release(session);
    std::fesetround(ownMode);

    ASSERT_EQ(result.loudWave.size(), loud.size());
    for (std::size_t i = 0; i < loud.size(); ++i) {
        EXPECT_EQ(result.loudWave[i].level, loud[i].level);
        EXPECT_EQ(result.loudWave[i].color, loud[i].color);
    }
    ASSERT_EQ(result.zoomWave.size(), zoom.size());
    for (std::size_t i = 0; i < zoom.size(); ++i)
        EXPECT_EQ(result.zoomWave[i].level, zoom[i].level);
}

TEST(Analysis, LeavesTheRoundingModeAlone) {
    media::StereoBlock block = music(48000, 1.0);
    base::AnalysisOptions options;
    {
        Analysis analysis(options, 48000, 48000);
        EXPECT_EQ(std::fegetround(), FE_TONEAREST);
        analysis.putLevels(block);
        EXPECT_EQ(std::fegetround(), FE_TONEAREST);
        analysis.put(block);
        EXPECT_EQ(std::fegetround(), FE_TONEAREST);
        static_cast<void>(analysis.result());
        EXPECT_EQ(std::fegetround(), FE_TONEAREST);
    }
    EXPECT_EQ(std::fegetround(), FE_TONEAREST);
}

TEST(Analysis, WantsTheLevelsFirstForTheKey) {
    media::StereoBlock block = music(48000, 1.0);
    Analysis analysis(base::AnalysisOptions{}, 48000, 48000);
    ASSERT_TRUE(analysis.needsLevels());
    analysis.put(block);
    EXPECT_FALSE(analysis.isFinished());
    analysis.putLevels(block);
    analysis.put(block);
    EXPECT_TRUE(analysis.isFinished());
}

TEST(Analysis, FindsNeitherTempoNorKeyWhereNeitherIsAskedFor) {
    media::StereoBlock block = music(44100, 5.0);
    Analysis analysis(viewsOnly(), 44100, static_cast<int>(block.frames()));
    EXPECT_FALSE(analysis.needsLevels());
    analysis.put(block);
    const base::AnalysisResult result = analysis.result();
    EXPECT_FALSE(result.bpm100.has_value());
    EXPECT_TRUE(result.beats.empty());
    EXPECT_FALSE(result.key.has_value());
    EXPECT_EQ(result.dotsWave.size(), 100U);
}

TEST(Analysis, MakesAHundredAndFiftyZoomPointsASecond) {
    for (const int rate : {44100, 48000}) {
        media::StereoBlock block = music(rate, 2.0);
        Analysis analysis(viewsOnly(), rate, 2 * rate);
        analysis.put(block);
        EXPECT_EQ(analysis.result().zoomWave.size(), 300U);
    }
}

TEST(Analysis, FinishesInEveryTempoMode) {
    media::StereoBlock block = music(44100, 3.0);
    for (const base::TempoMode mode : {base::TempoMode::constant, base::TempoMode::varied,
                                       base::TempoMode::simple, base::TempoMode::off}) {
        base::AnalysisOptions options = viewsOnly();
        options.tempo = mode;
        options.rangeSeconds = 1e9;  // longer than any track: all of it
        Analysis analysis(options, 44100, static_cast<int>(block.frames()));
        analysis.put(block);
        EXPECT_TRUE(analysis.isFinished());
    }
}

TEST(Analysis, TakesATrackOfOneFrame) {
    media::StereoBlock block{{1.0F}, {1.0F}};
    Analysis analysis(base::AnalysisOptions{}, 44100, 1);
    analysis.putLevels(block);
    analysis.put(block);
    ASSERT_TRUE(analysis.isFinished());
    const base::AnalysisResult result = analysis.result();
    EXPECT_EQ(result.zoomWave.size(), 1U);
    EXPECT_TRUE(result.beats.empty());
    EXPECT_FALSE(result.key.has_value());
}

}  // namespace
}  // namespace app
