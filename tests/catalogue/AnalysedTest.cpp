// SPDX-License-Identifier: MIT
#include "catalogue/Analysed.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "catalogue/CatalogueError.h"
#include "catalogue/StoredTracks.h"
#include "catalogue/blobCodecs.h"
#include "output/trackJson.h"
#include "support/Reports.h"

namespace catalogue {
namespace {

output::TrackReport reportOf(const WholeTrack& whole) {
    output::TrackReport report;
    static_cast<base::TrackSource&>(report) = whole.source;
    report.options = whole.options;
    report.analysis = whole.result;
    return report;
}

/** Stored and read again. */
output::TrackReport keptReport(const output::TrackReport& report) {
    return reportOf(
        wholeTrack(makeAnalysed(report, {}, {}, report.options, report.analysis, 0.0, {}, "1")));
}

// The document names everything that is known of a track.
TEST(Analysed, GivesBackEverythingThatTheDocumentTells) {
    output::TrackReport report = test::exampleReport();
    report.analysis = test::exampleResult();
    report.isCutOff = true;
    report.damagedPackets = 3;
    report.repeatedPackets = 1;
    report.gaps = {{1.25, 0.5}, {3.0, 0.1}};
    report.lacksEnd = true;
    report.format.changes = true;
    EXPECT_EQ(trackJson(keptReport(report), true).dump(), trackJson(report, true).dump());
}

TEST(Analysed, GivesBackATrackInWhichNothingWasFound) {
    const output::TrackReport report = test::emptyReport();
    const output::TrackReport kept = keptReport(report);
    EXPECT_EQ(trackJson(kept, true).dump(), trackJson(report, true).dump());
    EXPECT_FALSE(kept.analysis.bpm);
    EXPECT_FALSE(kept.analysis.judgement);
    EXPECT_FALSE(kept.analysis.key);
}

TEST(Analysed, KeepsSoundThatIsInfinitelyLoud) {
    output::TrackReport report = test::emptyReport();
    report.overload = {100, 2, std::numeric_limits<float>::infinity(), 1};
    const base::Overload kept = keptReport(report).overload;
    EXPECT_TRUE(std::isinf(kept.peak));
    EXPECT_EQ(kept.heard, 100);
    EXPECT_EQ(kept.clipped, 2);
    EXPECT_EQ(kept.notNumbers, 1);
}

TEST(Analysed, RefusesDetailsThatAreNone) {
    Analysed analysed = test::analysedTrack("/a", 1);
    const std::string whole = analysed.result.details;
    for (const std::string& text :
         {std::string(), std::string("{}"), std::string("[1]"), whole.substr(0, whole.size() / 2),
          std::string(R"({"file":{}})")}) {
        analysed.result.details = text;
        EXPECT_THROW(wholeTrack(analysed), CatalogueError) << text;
    }
    // Names of keys are looked up by their numbers.
    analysed.result.details = whole;
    const std::size_t ranking = whole.find("\"ranking\":[[12");
    ASSERT_NE(ranking, std::string::npos);
    analysed.result.details.replace(ranking + 12, 2, "99");
    EXPECT_THROW(wholeTrack(analysed), CatalogueError);
}

TEST(Analysed, RefusesARateThatIsNone) {
    Analysed analysed = test::analysedTrack("/a", 1);
    analysed.track.format.sessionRate = 0;
    EXPECT_THROW(wholeTrack(analysed), CatalogueError);
}

TEST(Analysed, RefusesALengthAndBeatsThatNoTrackHas) {
    for (const std::int64_t frames : {std::int64_t{-1}, std::int64_t{1} << 31}) {
        Analysed analysed = test::analysedTrack("/a", 1);
        analysed.track.frames = frames;
        EXPECT_THROW(wholeTrack(analysed), DamagedRecord) << frames;
    }
    for (const double seconds : {std::numeric_limits<double>::quiet_NaN(), -1.0e300}) {
        Analysed analysed = test::analysedTrack("/a", 1);
        analysed.result.beats = encodeBeats({{seconds, 120.0, 0, 1}}, 44100);
        EXPECT_THROW(wholeTrack(analysed), DamagedRecord) << seconds;
    }
}

}  // namespace
}  // namespace catalogue
