// SPDX-License-Identifier: MIT
#include "output/textSummary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Reports.h"

namespace output {
namespace {

using testing::HasSubstr;
using testing::Not;

// 15 beats from 0.1 s on, beginning with the fourth of a bar: bars begin at beats 1, 5, 9 and 13,
// the first at 0.6 s.
TEST(textSummary, TellsAllThatWasFound) {
    EXPECT_EQ(textSummary(test::exampleReport()),
              "music/track.flac\n"
              "  audio    flac, 48,000 Hz, stereo\n"
              "  length   0:08.00  (384,000 frames)\n"
              "  tempo    120.00 BPM\n"
              "  beats    15 beats, first at 0:00.10; 4 bars, first at 0:00.60\n"
              "  key      A minor, 8A, 1m, number 12\n"
              "  waves    400 loudness, 100 dots, 1,200 zoom points\n");
}

TEST(textSummary, SaysPlainlyWhatWasNotFound) {
    const std::string text = textSummary(test::emptyReport());
    EXPECT_THAT(text, HasSubstr("tempo    no tempo found\n"));
    EXPECT_THAT(text, HasSubstr("beats    none found\n"));
    EXPECT_THAT(text, HasSubstr("key      no key found\n"));
}

TEST(textSummary, CountsOneOfAThingAsOne) {
    TrackReport report = test::emptyReport();
    report.analysis.frames = 1;
    report.analysis.zoomWave.resize(1);
    EXPECT_THAT(textSummary(report), HasSubstr("  (1 frame)\n"));
    EXPECT_THAT(textSummary(report), HasSubstr(", 1 zoom point\n"));
}

TEST(textSummary, IsSilentAboutWhatWasNotAskedFor) {
    TrackReport report = test::emptyReport();
    report.options.tempo = beatatlas::track::TempoMode::off;
    report.options.wantsKey = false;
    const std::string text = textSummary(report);
    EXPECT_THAT(text, Not(HasSubstr("tempo")));
    EXPECT_THAT(text, Not(HasSubstr("beats")));
    EXPECT_THAT(text, Not(HasSubstr("key")));
}

TEST(textSummary, TellsTheRangeOfAVaryingTempo) {
    TrackReport report = test::exampleReport();
    report.analysis.beats[3].bpm = 118.5;
    report.analysis.beats[7].bpm = 122.04;
    EXPECT_THAT(textSummary(report), HasSubstr("120.00 BPM, 118.50 to 122.04 along the track\n"));
}

TEST(textSummary, TellsTheSecondCandidateOfAnUncertainKey) {
    TrackReport report = test::exampleReport();
    report.analysis.key->confidence = 0.79;
    EXPECT_THAT(textSummary(report),
                HasSubstr("key      A minor, 8A, 1m, number 12; perhaps C major (8B)\n"));
    EXPECT_EQ(keyText(report), "A minor (8A)");
    report.analysis.key->confidence = 0.2;
    EXPECT_THAT(textSummary(report), HasSubstr("; perhaps C major (8B); hardly a clear key\n"));
}

TEST(textSummary, NamesKeysInTheNotationAskedFor) {
    TrackReport report = test::exampleReport();
    report.keyNotation = KeyNotation::openKey;
    EXPECT_THAT(textSummary(report), HasSubstr("key      1m\n"));
    report.analysis.key->confidence = 0.5;
    EXPECT_THAT(textSummary(report), HasSubstr("key      1m; perhaps 1d\n"));
    EXPECT_EQ(keyText(report), "1m");
}

TEST(textSummary, TellsWhereTheKeyChanges) {
    TrackReport report = test::exampleReport();
    EXPECT_THAT(textSummary(report), Not(HasSubstr("changes")));
    report.analysis.key->segments = {{0.0, 4.5, 12, 0.9}, {4.5, 8.0, 13, 0.9}};
    EXPECT_THAT(textSummary(report),
                HasSubstr("  changes  A minor (8A) from 0:00.00, Bb minor (3A) from 0:04.50\n"));
}

/** Of an automatic tempo that is sure in every part. */
TrackReport judgedReport() {
    TrackReport report = test::exampleReport();
    report.analysis.judgement = {true,
                                 *report.analysis.bpm,
                                 {0.99, 0.99, 0.98, 0.91},
                                 {{0.1, 7.6, 120.0}},
                                 {{beatatlas::track::ReadingKind::shifted, 120.0, 0.25, 0.5},
                                  {beatatlas::track::ReadingKind::half, 60.0, 0.125, 0.0}}};
    return report;
}

TEST(textSummary, TellsASureTempoWithoutDoubts) {
    EXPECT_THAT(textSummary(judgedReport()), HasSubstr("tempo    120.00 BPM\n"));
}

TEST(textSummary, TellsTheLikeliestOtherTempoOfAnUnsureLevel) {
    TrackReport report = judgedReport();
    report.analysis.judgement->confidence.level = 0.88;
    EXPECT_THAT(textSummary(report), HasSubstr("120.00 BPM, perhaps 60.00\n"));
}

TEST(textSummary, TellsOfBeatsThatMayLieBetween) {
    TrackReport report = judgedReport();
    report.analysis.judgement->confidence.phase = 0.6;
    EXPECT_THAT(textSummary(report), HasSubstr("120.00 BPM, beats perhaps between these\n"));
}

TEST(textSummary, TellsOfAPulseThatIsHardlyClear) {
    TrackReport report = judgedReport();
    report.analysis.judgement->confidence.tempo = 0.5;
    EXPECT_THAT(textSummary(report), HasSubstr("120.00 BPM; hardly a clear pulse\n"));
}

TEST(textSummary, TellsHowFarATempoOfStretchesVaries) {
    TrackReport report = judgedReport();
    report.analysis.judgement->isSteady = false;
    report.analysis.judgement->stretches = {{0.1, 4.0, 125.5}, {4.0, 7.6, 100.0}};
    EXPECT_THAT(textSummary(report), HasSubstr("120.00 BPM, varies: 100.00 to 125.50\n"));
}

TEST(textSummary, TellsTheTempoBeforeItWasBroughtIntoARange) {
    TrackReport report = judgedReport();
    report.analysis.judgement->rawBpm = 60.0;
    EXPECT_THAT(textSummary(report),
                HasSubstr("120.00 BPM (60.00 before it was brought into the range)\n"));
}

TEST(textSummary, TellsBothRatesOfAConvertedTrack) {
    TrackReport report = test::exampleReport();
    report.format.trackRate = 96000;
    report.format.channels = 6;
    EXPECT_THAT(textSummary(report),
                HasSubstr("flac, 96,000 Hz, 6 channels (analysed at 48,000 Hz)\n"));
}

TEST(textSummary, KeepsAnUnrulyNameOnOneLine) {
    TrackReport report = test::exampleReport();
    report.path = "a\nb\x1B[2J\xFF";
    EXPECT_EQ(textSummary(report).substr(0, 16), "a\\nb\\x1B[2J\\xFF\n");
}

}  // namespace
}  // namespace output
