// SPDX-License-Identifier: MIT
// A session prints its progress lines unless it is told to be quiet, which changes no result.
#include <string>

#include "session/Analyzer.h"
#include "support/RoundTowardZero.h"
#include "support/TrackSynth.h"

namespace beatatlas::test {
namespace {

struct Answer {
    std::string printed;
    int bpm = 0;
    std::size_t beats = 0;
};

class QuietSessionTest : public RoundTowardZero {
protected:
    static Answer analysed(bool isQuiet, bool varied) {
        const StereoTrack track = TrackSynth(dryKickPlan(44100, 44100LL * 6, 170.0)).renderAll();
        Analyzer analyzer;
        analyzer.setQuiet(isQuiet);
        analyzer.create(44100, track.frames(), 32, varied, true, true, false);
        ::testing::internal::CaptureStdout();
        analyzer.setSample(track.left.data(), track.right.data(), track.frames());
        return {::testing::internal::GetCapturedStdout(), analyzer.getBpm(),
                analyzer.getBeatList().size()};
    }
};

TEST_F(QuietSessionTest, PrintsNothingAndFindsTheSame) {
    for (const bool varied : {false, true}) {
        const Answer usual = analysed(false, varied);
        const Answer quiet = analysed(true, varied);
        EXPECT_EQ(usual.printed.find("BeatInfoAnalyzer::analyze() 拍情報の解析開始\n"), 0U);
        EXPECT_EQ(quiet.printed, "");
        EXPECT_GT(usual.beats, 0U);
        EXPECT_EQ(quiet.beats, usual.beats);
        EXPECT_EQ(quiet.bpm, usual.bpm);
    }
}

}  // namespace
}  // namespace beatatlas::test
