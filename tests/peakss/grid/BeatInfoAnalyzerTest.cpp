// SPDX-License-Identifier: MIT
#include "peakss/grid/BeatInfoAnalyzer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "peakss/grid/beatLists.h"
#include "support/RoundTowardZero.h"

namespace {

using beatatlas::test::beatAt;
using beatatlas::test::beatsAt;
using beatatlas::test::beatsOfIntervals;
using beatatlas::test::evenBeats;
using beatatlas::test::groupsOf;
using beatatlas::test::joined;
using beatatlas::test::kHighest;
using beatatlas::test::kLowest;
using beatatlas::test::kRate;
using beatatlas::test::positionsOf;
using peakss::BeatInfo;
using peakss::BeatInfoAnalyzeInfo;
using peakss::BeatInfoAnalyzer;
using peakss::BeatList;

struct Analysis {
    float bpm = 0.0F;
    BeatList beats;
    std::string output;  // standard output
    std::string trace;   // the debug stream, when one was asked for
};

/** Analyses as a session does, with its phrase of 32 beats unless another is given. */
class BeatInfoAnalyzerTest : public beatatlas::test::RoundTowardZero {
protected:
    Analysis analyzed(BeatList raw, int length, bool varied) {
        Analysis result;
        result.beats = {beatAt(-77)};  // shows whether the list was touched
        char* text = nullptr;
        std::size_t size = 0;
        std::FILE* stream = isTraced_ ? open_memstream(&text, &size) : nullptr;
        testing::internal::CaptureStdout();
        BeatInfoAnalyzeInfo info{6, &raw};
        BeatInfoAnalyzer analyzer;
        analyzer.setSamplingRate(rate_);
        analyzer.setDebugStream(stream);
        analyzer.setQuiet(isQuiet_);
        result.bpm = analyzer.analyze(&info, result.beats, length, 4, front_, back_, varied);
        result.output = testing::internal::GetCapturedStdout();
        if (stream != nullptr) std::fclose(stream);
        if (text != nullptr) result.trace.assign(text, size);
        std::free(text);
        return result;
    }
    static bool isUntouched(const BeatList& beats) {
        return beats.size() == 1 && beats[0].pos == -77;
    }

    int rate_ = kRate;
    int front_ = 16;
    int back_ = 12;
    bool isTraced_ = false;
    bool isQuiet_ = false;
};

// Candidates tell 500 ms (120.0 BPM), but lie 24010 samples apart, which is 119.95: the even grid
// tells the tempo. 24010 / 48 = 500.208313 in single precision, 60000 / 500.208313 = 119.950019…
TEST_F(BeatInfoAnalyzerTest, ConstantTempoIsThatOfTheEvenGrid) {
    const Analysis result = analyzed(evenBeats(0, 24010, 80), 80 * 24010, false);
    EXPECT_NEAR(result.bpm, 119.95, 0.005);
    ASSERT_FALSE(result.beats.empty());
    EXPECT_EQ(result.bpm, 60000.0F / result.beats[0].interval);
    for (std::size_t i = 1; i < result.beats.size(); ++i) {
        EXPECT_EQ(result.beats[i].interval, result.beats[0].interval);
        EXPECT_NEAR(result.beats[i].pos - result.beats[i - 1].pos, 24010, 3);
    }
}

// Candidates 144 samples behind the beats (band 2 is heard 3 ms late) from sample 1000 on.
TEST_F(BeatInfoAnalyzerTest, ConstantTempoGridIsNumberedFromItsFirstAnchor) {
    for (const auto& [front, back] : {std::pair{16, 12}, {8, 4}, {0, 0}}) {
        front_ = front;
        back_ = back;
        const Analysis result = analyzed(evenBeats(1144, 24000, 40), 960000, false);
        EXPECT_EQ(result.bpm, 120.0F);
        ASSERT_EQ(result.beats.size(), 40U);
        for (std::size_t i = 0; i < 40; ++i) {
            EXPECT_EQ(result.beats[i].pos, 1000 + static_cast<int>(i) * 24000);
            EXPECT_EQ(result.beats[i].group, static_cast<int>(i % 4) + 1);
        }
    }
}

// The first grid beat lies at −144 and is number 1; it is trimmed only after that.
TEST_F(BeatInfoAnalyzerTest, TrimmingBehindNumberingMayLeaveAFirstBeatThatIsNotNumberOne) {
    const Analysis result = analyzed(evenBeats(0, 24000, 40), 960000, false);
    ASSERT_EQ(result.beats.size(), 40U);
    EXPECT_EQ(result.beats[0].pos, 23856);
    EXPECT_EQ(result.beats[0].group, 2);
    EXPECT_LE(result.beats.back().pos, 960000);
}

// 120 BPM for 32 beats, then 150. The grids join at 743856 and 748656; of the four beats around,
// the middle gap of 4800 is too short, its beat goes, and 24000 samples lead up to 767856. Beat 1
// is the first segment's origin, −144.
TEST_F(BeatInfoAnalyzerTest, VariedTempoFollowsAChangeAndTellsTheLongestSegmentsTempo) {
    const BeatList raw = joined(evenBeats(0, 24000, 32), evenBeats(768000, 19200, 40, 400.0F));
    for (const auto& [front, back] : {std::pair{16, 12}, {8, 4}, {0, 0}}) {
        front_ = front;
        back_ = back;
        BeatList grouped = raw;
        for (std::size_t i = 0; i < grouped.size(); ++i)
            grouped[i].group = (static_cast<int>(i) << 8) | 20;
        const Analysis result = analyzed(grouped, 1536000, true);
        // Before adjustment the segments are equally long, 768000 samples: the earlier one tells
        // the tempo.
        EXPECT_EQ(result.bpm, 120.0F);
        std::vector<int> expected = positionsOf(evenBeats(23856, 24000, 31));
        for (int pos = 767856; pos < 1536000; pos += 19200) expected.push_back(pos);
        EXPECT_EQ(positionsOf(result.beats), expected);
        for (std::size_t i = 0; i < result.beats.size(); ++i)
            EXPECT_EQ(result.beats[i].group, static_cast<int>((i + 1) % 4) + 1);
    }
}

// Doubled and halved candidates survive every cleanup, and the grid is that of the common tempo.
TEST_F(BeatInfoAnalyzerTest, CandidatesAtDoubleOrHalfTheTempoAreKept) {
    BeatList raw = evenBeats(1144, 24000, 60);
    for (std::size_t i = 0; i < raw.size(); i += 5) raw[i].interval = 1000.0F;
    for (std::size_t i = 2; i < raw.size(); i += 5) raw[i].interval = 250.0F;
    isTraced_ = true;
    for (const bool varied : {false, true}) {
        const Analysis result = analyzed(raw, 1440000, varied);
        EXPECT_EQ(result.bpm, 120.0F);
        EXPECT_EQ(result.beats.size(), 60U);
        // The list before adjustment still holds every candidate.
        const std::size_t section = result.trace.find("[ 近い値調整後のデータ ]\r\n");
        const std::size_t end = result.trace.find("\r\n\r\n", section);
        ASSERT_NE(end, std::string::npos);
        const std::string lines = result.trace.substr(section, end - section);
        EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 60 + 1);
    }
}

TEST_F(BeatInfoAnalyzerTest, EmptyListGivesNoTempo) {
    for (const bool varied : {false, true}) {
        const Analysis result = analyzed({}, 960000, varied);
        EXPECT_EQ(result.bpm, 0.0F);
        EXPECT_TRUE(isUntouched(result.beats));
        EXPECT_EQ(result.output, "BeatInfoAnalyzer::analyze() 拍情報の解析開始\n");
    }
}

TEST_F(BeatInfoAnalyzerTest, ListWithoutACountableTempoGivesNone) {
    const Analysis constant = analyzed(beatsOfIntervals({0.0F, 75.0F, -3.0F}), 960000, false);
    EXPECT_EQ(constant.bpm, 0.0F);
    EXPECT_TRUE(isUntouched(constant.beats));
    EXPECT_EQ(constant.output, "BeatInfoAnalyzer::analyze() 拍情報の解析開始\n");
    const Analysis varied = analyzed(beatsOfIntervals({75.0F}), 960000, true);
    EXPECT_EQ(varied.bpm, 0.0F);
    EXPECT_TRUE(isUntouched(varied.beats));
}

// 0.3 BPM: coarse slot 0, fine slot 3, an interval of 200000 ms, while the one candidate tells
// 190000: it matches neither that nor the walk's first value, and the list runs empty.
TEST_F(BeatInfoAnalyzerTest, ListEmptiedByTheCleanupGivesNoTempo) {
    isTraced_ = true;
    const Analysis result = analyzed(beatsOfIntervals({190000.0F}), 960000, false);
    EXPECT_EQ(result.bpm, 0.0F);
    EXPECT_TRUE(isUntouched(result.beats));
    EXPECT_EQ(result.output,
              "BeatInfoAnalyzer::analyze() 拍情報の解析開始\nBPMの一致しない値を消去します\n");
    const std::string last = "[ BPMの一致しない値削除後のデータ ]\r\n\r\n\r\n";
    EXPECT_EQ(result.trace.substr(result.trace.size() - last.size()), last);
}

// All candidates lie at the end of the track or behind it, so there is no beat to lay.
TEST_F(BeatInfoAnalyzerTest, EvenGridWithoutABeatHasNoTempo) {
    const Analysis result = analyzed(evenBeats(0, 24000, 10), 0, false);
    EXPECT_EQ(result.bpm, 0.0F);
    EXPECT_TRUE(result.beats.empty());
}

TEST_F(BeatInfoAnalyzerTest, NoContextGivesNoTempo) {
    BeatInfoAnalyzer analyzer;
    BeatList out{beatAt(-77)};
    BeatInfoAnalyzeInfo info;
    EXPECT_EQ(analyzer.analyze(nullptr, out, 1000, 4, 0, 0, false), 0.0F);
    EXPECT_EQ(analyzer.analyze(&info, out, 1000, 4, 0, 0, false), 0.0F);
    EXPECT_TRUE(isUntouched(out));
}

TEST_F(BeatInfoAnalyzerTest, ProgressLinesOfAConstantTempo) {
    const Analysis result = analyzed(evenBeats(1144, 24000, 40), 960000, false);
    // One segment, fitted to 1144: anchors every 4 beats, skip 0.
    EXPECT_EQ(result.output, "BeatInfoAnalyzer::analyze() 拍情報の解析開始\n"
                             "BPMの一致しない値を消去します\n"
                             "区間情報\n"
                             "16\t120.000000\t0.000000\t1144\t0\n"
                             "BeatInfoAnalyzer::analyze() 拍情報の解析終了\n");
}

TEST_F(BeatInfoAnalyzerTest, ProgressLinesOfAVariedTempo) {
    const Analysis result = analyzed(evenBeats(1144, 24000, 40), 960000, true);
    EXPECT_EQ(result.output, "BeatInfoAnalyzer::analyze() 拍情報の解析開始\n"
                             "8個以上連続しない値を消去します\n"
                             "区間情報\n"
                             "16\t120.000000\t0.000000\t1144\t0\n"
                             "BeatInfoAnalyzer::analyze() 拍情報の解析終了\n");
}

TEST_F(BeatInfoAnalyzerTest, QuietItPrintsNothingAndFindsAndTracesTheSame) {
    isTraced_ = true;
    for (const bool varied : {false, true}) {
        isQuiet_ = false;
        const Analysis printed = analyzed(evenBeats(1144, 24000, 40), 960000, varied);
        isQuiet_ = true;
        const Analysis quiet = analyzed(evenBeats(1144, 24000, 40), 960000, varied);
        EXPECT_NE(printed.output, "");
        EXPECT_EQ(quiet.output, "");
        EXPECT_EQ(quiet.trace, printed.trace);
        EXPECT_EQ(quiet.bpm, printed.bpm);
        EXPECT_EQ(positionsOf(quiet.beats), positionsOf(printed.beats));
    }
}

// Without a segment the sections up to the segment list are still written, empty, and no closing
// line.
TEST_F(BeatInfoAnalyzerTest, TraceWithoutASegmentEndsAtTheEmptySegmentList) {
    isTraced_ = true;
    const Analysis result = analyzed(beatsOfIntervals({75.0F}), 960000, true);
    const std::string line = std::string(60, '=') + "\r\n";
    const std::string raw = "20\t800.000000\t0.000000\t0\t2\n";
    EXPECT_EQ(result.trace, line + "ビート情報解析データ\r\n" + line +                            //
                                "[ 選出生データ ]\r\n" + raw + "\r\n\r\n" +                       //
                                "[ 連続しないBPM区間削除後のデータ ]\r\n" + raw + "\r\n\r\n" +    //
                                "[ 8個以上連続しない値削除後のデータ ]\r\n" + raw + "\r\n\r\n" +  //
                                "[ 近い値調整後のデータ ]\r\n" + raw + "\r\n\r\n" +               //
                                "[ 代表BPM ]\r\n0.000000\r\n\r\n\r\n" +                           //
                                "[ アジャスト前区間情報 ]\r\n\r\n\r\n");
    EXPECT_EQ(result.output,
              "BeatInfoAnalyzer::analyze() 拍情報の解析開始\n8個以上連続しない値を消去します\n");
}

TEST_F(BeatInfoAnalyzerTest, TraceNamesEveryStageInOrder) {
    isTraced_ = true;
    const Analysis result = analyzed(evenBeats(1144, 24000, 40), 960000, false);
    std::size_t from = 0;
    for (const char* header :
         {"[ 選出生データ ]\r\n", "[ BPMの一致しない値削除後のデータ ]\r\n",
          "[ 近い値調整後のデータ ]\r\n", "[ 代表BPM ]\r\n120.000000\r\n\r\n\r\n",
          "[ アジャスト前区間情報 ]\r\n4\t120.000000\t0.000000\t1144\t0\n\r\n\r\n",
          "[ アジャスト後区間情報 ]\r\n16\t120.000000\t0.000000\t1144\t0\n\r\n\r\n",
          "[ 区間をBPM値で分割したデータ ]\r\n0\t120.000000\t0.000000\t1000\t2\n",
          "[ 位置補正後のデータ ]\r\n1\t120.000000\t0.000000\t1000\t2\n",
          // Only the two anchors the even grid is laid through keep their band.
          "[ バンド毎の件数 ]\r\nband0 : 0\r\nband1 : 0\r\nband2 : 2\r\n",
          "[ バンド毎のオフセット ]\r\n区間0\r\n"}) {
        const std::size_t found = result.trace.find(header, from);
        ASSERT_NE(found, std::string::npos) << header;
        from = found + 1;
    }
    EXPECT_EQ(result.trace.find("[ 選出生データ ]", result.trace.find("[ 選出生データ ]") + 1),
              std::string::npos);
}

TEST_F(BeatInfoAnalyzerTest, TraceDoesNotChangeTheResult) {
    const BeatList raw = evenBeats(1144, 24000, 40);
    const Analysis plain = analyzed(raw, 960000, true);
    isTraced_ = true;
    const Analysis traced = analyzed(raw, 960000, true);
    EXPECT_EQ(plain.bpm, traced.bpm);
    EXPECT_EQ(positionsOf(plain.beats), positionsOf(traced.beats));
    EXPECT_EQ(plain.output, traced.output);
}

// Two bands at known tempi, heard 3 and 30 ms late, with a tenth missing and some strays. The walk
// may end on a beat heard 30 ms late where it allows for 3: the error of 27 ms, 1296 samples,
// spreads over the last phrase. Over the track's two minutes that is 0.02 % of the tempo.
TEST_F(BeatInfoAnalyzerTest, FindsTheBeatsOfTracksOfKnownTempo) {
    for (const double bpm : {71.0, 93.47, 110.0, 127.996, 128.0, 150.5, 174.02}) {
        std::mt19937 random(17);
        const double beat = 60.0 / bpm * kRate;
        const int length = 120 * kRate;
        BeatList raw;
        for (int i = 0; 5000 + i * beat < length; ++i) {
            const auto heard = [&](double lateMs, int band) {
                if (random() % 10 == 0) return;
                const auto at = static_cast<int>(5000 + i * beat + lateMs * 48.0);
                raw.push_back(beatAt(at, static_cast<float>(60000.0 / bpm), i, 20 + band, band));
            };
            heard(3.0, 2);
            heard(30.0, 0);
            if (i % 16 == 7)
                raw.push_back(beatAt(static_cast<int>(5000 + (i + 0.4) * beat), 777.0F, i));
        }
        const Analysis result = analyzed(raw, length, false);
        EXPECT_NEAR(result.bpm, bpm, bpm * 0.00025);
        ASSERT_GT(result.beats.size(), 100U);
        for (const BeatInfo& found : result.beats) {
            const double away = std::remainder(found.pos - 5000.0, beat);
            EXPECT_NEAR(away, 0.0, 1296.0) << bpm;
        }
    }
}

TEST_F(BeatInfoAnalyzerTest, AbsurdListsAreSafe) {
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    const std::vector<float> intervals{0.0F,       -0.0F,     1e-38F, 1e38F,     -1.0F,
                                       -120000.0F, 200000.0F, 500.0F, kNoNumber, kInfinite,
                                       150.05F,    60000.0F,  0.001F};
    const std::vector<std::vector<int>> places{{0},
                                               {0, 0, 0, 0},
                                               {kHighest},
                                               {kLowest},
                                               {kHighest - 2, kHighest - 1, kHighest},
                                               {kLowest, 0, kHighest},
                                               {-500, -400, 100}};
    for (const bool varied : {false, true}) {
        for (const std::vector<int>& positions : places) {
            for (const float interval : intervals) {
                for (const int length : {kLowest, -1, 0, 1, 960000}) {
                    const Analysis result = analyzed(beatsAt(positions, interval), length, varied);
                    if (isUntouched(result.beats)) continue;
                    for (const BeatInfo& beat : result.beats)
                        EXPECT_TRUE(beat.pos >= 0 && beat.pos <= length);
                }
            }
        }
    }
}

TEST_F(BeatInfoAnalyzerTest, TracksAsLongAsTheNumberRangeAreSafe) {
    for (const bool varied : {false, true}) {
        for (const std::vector<int>& positions :
             {std::vector<int>{kLowest}, {kHighest - 1, kHighest}, {kLowest, 0, kHighest}}) {
            const Analysis result = analyzed(beatsAt(positions), kHighest, varied);
            EXPECT_NEAR(result.bpm, 120.0F, 1.0F);
            EXPECT_LT(result.beats.size(), 90000U);
        }
    }
}

TEST_F(BeatInfoAnalyzerTest, AbsurdRatesAreSafe) {
    const BeatList raw = evenBeats(0, 24000, 40);
    for (const int rate : {kLowest, -48000, 0, 1, 999, kHighest}) {
        rate_ = rate;
        for (const bool varied : {false, true}) analyzed(raw, 960000, varied);
    }
}

// Records of every field at random, none of them music.
TEST_F(BeatInfoAnalyzerTest, RandomRecordsAreSafe) {
    std::mt19937 random(23);
    for (int round = 0; round < 300; ++round) {
        BeatList raw;
        int pos = static_cast<int>(random() % 100000);
        for (unsigned i = 0; i < random() % 60; ++i) {
            BeatInfo beat = beatAt(pos);
            beat.interval = std::ldexp(static_cast<float>(random() % 1000),
                                       static_cast<int>(random() % 10) - 3);
            beat.group = static_cast<int>(random());
            beat.band = static_cast<int>(random() % 10) - 2;
            raw.push_back(beat);
            pos += static_cast<int>(random() % 60000);
        }
        const Analysis result = analyzed(raw, pos, round % 2 == 0);
        if (isUntouched(result.beats)) continue;
        for (const BeatInfo& beat : result.beats) EXPECT_TRUE(beat.group >= 1 && beat.group <= 4);
    }
}

// A ten-hour mix: a quarter of a million candidates, tempo changing every few minutes, some hundred
// of them at one place. Any stage that erased one by one, or looked up beats from the start of the
// list, would take minutes.
TEST_F(BeatInfoAnalyzerTest, HundredsOfThousandsOfCandidatesAreAnalysedAtOnce) {
    BeatList raw;
    double at = 5000.0;
    int group = 0;
    for (int song = 0; raw.size() < 250000; ++song) {
        const double bpm = 100.0 + (song * 37) % 60;
        const auto interval = static_cast<float>(60000.0 / bpm);
        for (int i = 0; i < 600; ++i, ++group) {
            for (int band = 0; band < 4; ++band)
                raw.push_back(
                    beatAt(static_cast<int>(at) + band * 10, interval, group, 20 + band, band));
            at += 60.0 / bpm * kRate;
        }
    }
    const int length = static_cast<int>(at);
    for (const bool varied : {false, true}) {
        const Analysis result = analyzed(raw, length, varied);
        EXPECT_GT(result.bpm, 99.0F);
        EXPECT_GT(result.beats.size(), 30000U);
    }
}

TEST_F(BeatInfoAnalyzerTest, ACrowdOfCandidatesAtOnePositionIsAnalysedAtOnce) {
    BeatList raw(100000, beatAt(48000));
    for (std::size_t i = 0; i < raw.size(); ++i) raw[i].group = static_cast<int>(i) << 8;
    for (const bool varied : {false, true}) {
        const Analysis result = analyzed(raw, 960000, varied);
        EXPECT_NEAR(result.bpm, 120.0F, 0.5F);  // one place fits 498 to 502 ms alike
        EXPECT_GE(result.beats.size(), 39U);
    }
}

}  // namespace
