// SPDX-License-Identifier: MIT
// A session prints its progress lines unless it is told to be quiet, which changes no result.
#include <string>
#include <vector>

#include "session/Analyzer.h"
#include "support/RoundTowardZero.h"
#include "support/TrackSynth.h"

namespace beatatlas::test {
namespace {

struct Answer {
    std::string printed;
    int bpm = 0;
    peakss::BeatList beats;
    std::vector<float> levels;  // of all waves
    std::vector<int> colors;
};

template <class Point>
void addWave(const Point* points, int count, Answer& answer) {
    for (int i = 0; i < count; ++i) {
        answer.levels.push_back(static_cast<float>(points[i].level));
        answer.colors.push_back(points[i].color);
    }
}

class QuietSessionTest : public RoundTowardZero {
protected:
    static Answer analysed(bool isQuiet, bool varied) {
        const StereoTrack track = TrackSynth(dryKickPlan(44100, 44100LL * 6, 170.0)).renderAll();
        Analyzer analyzer;
        analyzer.setQuiet(isQuiet);
        analyzer.create(44100, track.frames(), 32, varied, true, true, false);
        ::testing::internal::CaptureStdout();
        analyzer.setSample(track.left.data(), track.right.data(), track.frames());
        Answer answer{::testing::internal::GetCapturedStdout(),
                      analyzer.getBpm(),
                      analyzer.getBeatList(),
                      {},
                      {}};
        addWave(analyzer.getLoudWave(), analyzer.getLoudNum(), answer);
        addWave(analyzer.getDotsWave(), analyzer.getDotsNum(), answer);
        addWave(analyzer.getZoomWave(), analyzer.getZoomNum(), answer);
        return answer;
    }
};

TEST_F(QuietSessionTest, PrintsNothingAndFindsTheSame) {
    for (const bool varied : {false, true}) {
        const Answer usual = analysed(false, varied);
        const Answer quiet = analysed(true, varied);
        EXPECT_EQ(usual.printed.find("BeatInfoAnalyzer::analyze() 拍情報の解析開始\n"), 0U);
        EXPECT_EQ(quiet.printed, "");
        EXPECT_EQ(quiet.bpm, usual.bpm);
        EXPECT_FALSE(usual.beats.empty());
        ASSERT_EQ(quiet.beats.size(), usual.beats.size());
        for (std::size_t i = 0; i < usual.beats.size(); ++i) {
            EXPECT_EQ(quiet.beats[i].pos, usual.beats[i].pos) << i;
            EXPECT_EQ(quiet.beats[i].interval, usual.beats[i].interval) << i;
            EXPECT_EQ(quiet.beats[i].group, usual.beats[i].group) << i;
        }
        EXPECT_EQ(usual.levels.size(), 400U + 100U + 150U * 6U);
        EXPECT_EQ(quiet.levels, usual.levels);
        EXPECT_EQ(quiet.colors, usual.colors);
    }
}

}  // namespace
}  // namespace beatatlas::test
