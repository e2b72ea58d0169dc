// SPDX-License-Identifier: MIT
#include "analysis/TrackAnalyzer.h"

#include <cfenv>
#include <cmath>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"

namespace app {
namespace {

using testing::HasSubstr;

class TrackAnalyzerTest : public testing::Test {
protected:
    void SetUp() override {
        test::writeAudioFile(track_, {"flac", "flac"}, test::tone(44100, 2, 4.0, 220.0, 0.4));
    }

    output::TrackReport analyze(const std::string& path, bool acceptsCutOff = false) const {
        ProgressLine progress("", false);
        return TrackAnalyzer(options_, acceptsCutOff).analyze(path, progress);
    }

    std::string reasonOf(const std::string& path) const {
        try {
            analyze(path);
        } catch (const base::TrackError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryFolder folder_;
    base::AnalysisOptions options_;
    std::string track_ = folder_.file("track");
};

TEST_F(TrackAnalyzerTest, TellsFormatLengthAndWaves) {
    const output::TrackReport report = analyze(track_);
    EXPECT_EQ(report.path, track_);
    EXPECT_EQ(report.format.codec, "flac");
    EXPECT_EQ(report.format.trackRate, 44100);
    EXPECT_EQ(report.analysis.rate, 44100);
    EXPECT_EQ(report.analysis.frames, 4 * 44100);
    EXPECT_DOUBLE_EQ(report.analysis.seconds(), 4.0);
    EXPECT_EQ(report.analysis.loudWave.size(), 400U);
    EXPECT_EQ(report.analysis.zoomWave.size(), 600U);
    EXPECT_FALSE(report.isCutOff);
}

TEST_F(TrackAnalyzerTest, FindsTheSameAgain) {
    const output::TrackReport first = analyze(track_);
    const output::TrackReport second = analyze(track_);
    ASSERT_EQ(first.analysis.loudWave.size(), second.analysis.loudWave.size());
    for (std::size_t i = 0; i < first.analysis.loudWave.size(); ++i) {
        EXPECT_EQ(first.analysis.loudWave[i].level, second.analysis.loudWave[i].level);
    }
}

TEST_F(TrackAnalyzerTest, RefusesATrackCutOffAndSaysWhatCanBeDone) {
    test::copyShortened(track_, folder_.file("cut"), 1000);
    EXPECT_THAT(reasonOf(folder_.file("cut")), HasSubstr("is cut off"));
    EXPECT_THAT(reasonOf(folder_.file("cut")), HasSubstr("--partial"));
}

TEST_F(TrackAnalyzerTest, AnalysesWhatIsLeftWhenThatIsWanted) {
    test::copyShortened(track_, folder_.file("cut"), std::filesystem::file_size(track_) / 2);
    const output::TrackReport report = analyze(folder_.file("cut"), true);
    EXPECT_TRUE(report.isCutOff);
    EXPECT_GT(report.analysis.frames, 44100);
    EXPECT_LT(report.analysis.frames, 3 * 44100);
}

TEST_F(TrackAnalyzerTest, RefusesATrackTooLongToCountBeforeDecodingIt) {
    // One byte a frame: the header of a WAV of 2.3 thousand million frames, and a hole in the disk for the music.
    constexpr std::uint32_t kFrames = 2300000000U;
    const auto number = [](std::uint32_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i) text += static_cast<char>((value >> (8 * i)) & 0xFF);
        return text;
    };
    const std::string path = folder_.file("long");
    test::writeFile(path, "RIFF" + number(kFrames + 36, 4) + "WAVEfmt " + number(16, 4) +
                              number(1, 2) + number(1, 2) + number(44100, 4) + number(44100, 4) +
                              number(1, 2) + number(8, 2) + "data" + number(kFrames, 4));
    std::filesystem::resize_file(path, 44ULL + kFrames);
    EXPECT_THAT(reasonOf(path), HasSubstr("is too long"));
    EXPECT_THAT(reasonOf(path), HasSubstr("2,147,483,647 frames"));
}

TEST_F(TrackAnalyzerTest, RefusesATrackWithoutAFrame) {
    test::writeAudioFile(folder_.file("none"), {"wav", "pcm_s16le"}, {44100, {{}}});
    EXPECT_NE(reasonOf(folder_.file("none")), "");
}

TEST_F(TrackAnalyzerTest, LeavesTheRoundingModeAlone) {
    static_cast<void>(analyze(track_));
    EXPECT_EQ(std::fegetround(), FE_TONEAREST);
}

TEST_F(TrackAnalyzerTest, TakesTheShortestTracks) {
    for (const double seconds : {1.0 / 44100.0, 0.001, 0.1}) {
        test::writeAudioFile(folder_.file("short"), {"wav", "pcm_s16le"},
                             test::tone(44100, 2, seconds, 440.0, 0.5));
        EXPECT_EQ(analyze(folder_.file("short")).analysis.frames, std::lround(seconds * 44100.0));
    }
}

}  // namespace
}  // namespace app
