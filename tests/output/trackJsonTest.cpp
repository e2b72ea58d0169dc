// SPDX-License-Identifier: MIT
#include "output/trackJson.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "output/jsonParts.h"
#include "support/Reports.h"

namespace output {
namespace {

using Json = nlohmann::ordered_json;

TEST(trackJson, TellsTheTrackAndItsAudio) {
    const Json track = trackJson(test::exampleReport(), false);
    EXPECT_EQ(track["file"], "music/track.flac");
    EXPECT_FALSE(track.contains("fileBytes"));
    EXPECT_FALSE(track.contains("error"));
    EXPECT_EQ(
        track["audio"],
        (Json{{"container", "flac"}, {"codec", "flac"}, {"channels", 2}, {"sampleRate", 48000}}));
    EXPECT_EQ(track["sampleRate"], 48000);
    EXPECT_EQ(track["frames"], 384000);
    EXPECT_EQ(track["seconds"], 8.0);
    EXPECT_EQ(track["partial"], false);
    EXPECT_EQ(track["damagedPackets"], 0);
    EXPECT_EQ(track["gaps"], Json::array());
}

TEST(trackJson, TellsWhatIsWrongWithTheFile) {
    TrackReport report = test::exampleReport();
    report.gaps = {{2.5, 0.25}, {7.0, 1.0}};
    report.repeatedPackets = 3;
    report.lacksEnd = true;
    report.format.changes = true;
    const Json track = trackJson(report, false);
    EXPECT_EQ(track["gaps"], Json::parse(R"([{"start":2.5,"length":0.25},
                                             {"start":7.0,"length":1.0}])"));
    EXPECT_EQ(track["repeatedPackets"], 3);
    EXPECT_EQ(track["lacksEnd"], true);
    EXPECT_EQ(track["formatChanges"], true);
}

TEST(trackJson, TellsOfSamplesThatCouldNotBeAnalysedUnchanged) {
    TrackReport report = test::exampleReport();
    EXPECT_FALSE(trackJson(report, false).contains("overload"));
    report.overload = {1000, 11, 1.25F, 0};
    EXPECT_EQ(trackJson(report, false)["overload"], (Json{{"samples", 1000},
                                                          {"clipped", 11},
                                                          {"peak", 1.25},
                                                          {"notNumbers", 0},
                                                          {"tooLoud", true}}))
        << "more than one sample in a hundred";
    report.overload = {1000, 1, std::numeric_limits<float>::infinity(), 2};
    EXPECT_EQ(trackJson(report, false)["overload"]["peak"], nullptr) << "JSON has no infinity";
    report.overload = {1000, 0, 0.0F, 2};
    EXPECT_EQ(trackJson(report, false)["overload"], (Json{{"samples", 1000},
                                                          {"clipped", 0},
                                                          {"peak", 0.0},
                                                          {"notNumbers", 2},
                                                          {"tooLoud", false}}));
}

TEST(trackJson, TellsEveryBeatWithItsPlaceAndTempo) {
    TrackReport report = test::exampleReport();
    report.options.tempo = beatatlas::track::TempoMode::constant;
    const Json track = trackJson(report, false);
    EXPECT_EQ(track["tempo"], (Json{{"mode", "constant"}, {"bpm", 120.0}}));
    ASSERT_EQ(track["beats"].size(), 15U);
    EXPECT_EQ(track["beats"][1],
              (Json{{"frame", 28800}, {"seconds", 0.6}, {"beat", 1}, {"bpm", 120.0}}));
}

TEST(trackJson, TellsHowSureAnAutomaticTempoIsAndWhatElseItMayBe) {
    using beatatlas::track::ReadingKind;
    TrackReport report = test::exampleReport();
    report.analysis.judgement = {
        true,
        60.0,
        {0.98, 0.88, 0.93, 0.77},
        {{0.1, 7.6, 120.0}},
        {{ReadingKind::twice, 120.0, 0.25, 0.0}, {ReadingKind::shifted, 60.0, 0.125, 0.5}}};
    const Json tempo = trackJson(report, false)["tempo"];
    EXPECT_EQ(tempo["mode"], "auto");
    EXPECT_EQ(tempo["rawBpm"], 60.0);
    EXPECT_EQ(tempo["steady"], true);
    EXPECT_EQ(tempo["confidence"],
              (Json{{"tempo", 0.98}, {"level", 0.88}, {"phase", 0.93}, {"bars", 0.77}}));
    EXPECT_EQ(tempo["stretches"],
              (Json::array({Json{{"from", 0.1}, {"to", 7.6}, {"bpm", 120.0}}})));
    ASSERT_EQ(tempo["alternatives"].size(), 2U);
    EXPECT_EQ(tempo["alternatives"][0],
              (Json{{"kind", "double"}, {"bpm", 120.0}, {"shiftBeats", 0.0}, {"share", 0.25}}));
    EXPECT_EQ(tempo["alternatives"][1]["kind"], "shifted");
    EXPECT_EQ(tempo["alternatives"][1]["shiftBeats"], 0.5);
}

TEST(trackJson, WritesTemposAsAPersonWould) {
    TrackReport report = test::exampleReport();
    report.analysis.bpm = 127.99;
    EXPECT_EQ(trackJson(report, false)["tempo"]["bpm"].dump(), "127.99");
}

TEST(trackJson, TellsTheKeyInAllItsNamesAndAllTwentyFour) {
    const Json key = trackJson(test::exampleReport(), false)["key"];
    EXPECT_EQ(key["number"], 12);
    EXPECT_EQ(key["name"], "A minor");
    EXPECT_EQ(key["sharps"], "A minor");
    EXPECT_EQ(key["flats"], "A minor");
    EXPECT_EQ(key["camelot"], "8A");
    EXPECT_EQ(key["openKey"], "1m");
    EXPECT_EQ(key["confidence"], 0.875);
    EXPECT_EQ(key["tuning"], (Json{{"cents", 25.0}, {"hz", 446.4}}));
    ASSERT_EQ(key["ranking"].size(), 24U);
    EXPECT_EQ(key["ranking"][1]["name"], "C major");
    EXPECT_EQ(key["ranking"][1]["score"], 0.9375);
    EXPECT_EQ(key["ranking"][1]["probability"], 0.25);
    ASSERT_EQ(key["segments"].size(), 1U);
    EXPECT_EQ(key["segments"][0]["from"], 0.0);
    EXPECT_EQ(key["segments"][0]["to"], 8.0);
    EXPECT_EQ(key["segments"][0]["number"], 12);
    EXPECT_EQ(key["segments"][0]["confidence"], 0.875);
    ASSERT_EQ(key["chroma"].size(), 12U);
    EXPECT_EQ(key["chroma"][0], (Json{{"note", "A"}, {"share", 0.3125}}));
}

TEST(trackJson, TellsTheSessionsKeyByThatName) {
    TrackReport report = test::exampleReport();
    const Json key = trackJson(report, false)["sessionKey"];
    EXPECT_EQ(key["number"], 12);
    EXPECT_DOUBLE_EQ(key["runnerUpDistance"].get<double>(), 0.025);  // 200 against 195
    ASSERT_EQ(key["ranking"].size(), 24U);
    EXPECT_EQ(key["ranking"][1]["name"], "C major");
    EXPECT_EQ(key["ranking"][1]["score"], 195.0);
    ASSERT_EQ(key["notes"].size(), 12U);
    EXPECT_EQ(key["notes"][3]["note"], "C");
    report.options.wantsSessionKey = false;
    EXPECT_FALSE(trackJson(report, false).contains("sessionKey"));
}

TEST(trackJson, TellsWhatWasNotFoundAsNullAndLeavesOutWhatWasNotAskedFor) {
    TrackReport report = test::emptyReport();
    const Json asked = trackJson(report, false);
    EXPECT_TRUE(asked["tempo"]["bpm"].is_null());
    EXPECT_TRUE(asked["beats"].empty());
    EXPECT_TRUE(asked["key"].is_null());
    EXPECT_TRUE(asked["sessionKey"].is_null());
    report.options.tempo = beatatlas::track::TempoMode::off;
    report.options.wantsKey = false;
    report.options.wantsSessionKey = false;
    const Json unasked = trackJson(report, false);
    EXPECT_FALSE(unasked.contains("tempo"));
    EXPECT_FALSE(unasked.contains("beats"));
    EXPECT_FALSE(unasked.contains("key"));
    EXPECT_FALSE(unasked.contains("sessionKey"));
}

TEST(trackJson, HoldsTheWavesOnlyWhenWanted) {
    const TrackReport report = test::exampleReport();
    EXPECT_FALSE(trackJson(report, false).contains("waves"));
    const Json waves = trackJson(report, true)["waves"];
    EXPECT_EQ(waves["loud"]["levels"].size(), 400U);
    EXPECT_EQ(waves["loud"]["colors"].size(), 400U);
    EXPECT_EQ(waves["loud"]["levels"][200], 16000.0);
    EXPECT_EQ(waves["dots"]["levels"].size(), 100U);
    EXPECT_EQ(waves["zoom"]["pointsPerSecond"], 150);
    EXPECT_EQ(waves["zoom"]["levels"].size(), 1200U);
    EXPECT_EQ(waves["zoom"]["levels"][33].dump(), "1");
    EXPECT_EQ(waves["zoom"]["colors"][33], 1);
}

TEST(trackJson, KeepsNamesThatAreNotUtf8WithoutLoss) {
    TrackReport report = test::exampleReport();
    report.path = "caf\xE9.mp3";
    const Json track = trackJson(report, false);
    EXPECT_EQ(track["file"], "caf\\xE9.mp3");
    EXPECT_EQ(track["fileBytes"], "636166e92e6d7033");
    EXPECT_NO_THROW(static_cast<void>(track.dump()));
}

TEST(trackJson, KeepsControlCharactersOfANameInUtf8) {
    TrackReport report = test::exampleReport();
    report.path = "a\nb\"c\\d";
    const Json track = Json::parse(trackJson(report, false).dump());
    EXPECT_EQ(track["file"], "a\nb\"c\\d");
}

TEST(failureJson, TellsTheFileAndTheReason) {
    EXPECT_EQ(failureJson("x.mp3", "is empty"), (Json{{"file", "x.mp3"}, {"error", "is empty"}}));
}

}  // namespace
}  // namespace output
