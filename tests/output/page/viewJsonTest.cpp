// SPDX-License-Identifier: MIT
#include "output/page/viewJson.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "output/page/packed.h"
#include "support/Reports.h"

namespace output {
namespace {

using Json = nlohmann::ordered_json;

TEST(viewJson, NamesTheFileWithoutItsFolders) {
    TrackReport report = test::exampleReport();
    report.path = "secret/folder/a\xFF.flac";
    const Json view = viewJson(report, {});
    EXPECT_EQ(view["file"], "a\\xFF.flac");
    EXPECT_EQ(view.dump().find("secret"), std::string::npos);
    EXPECT_FALSE(view.contains("fileBytes"));
}

TEST(viewJson, PacksBeatsLittleEndian) {
    TrackReport report = test::exampleReport();
    report.analysis.beats = {{0.5, 120.0, 0x01020304, 1}, {1.0, 119.99, 48000, 2}};
    const Json beats = viewJson(report, {})["beats"];
    EXPECT_EQ(beats["frames"], base64(std::string_view("\x04\x03\x02\x01\x80\xBB\0\0", 8)));
    EXPECT_EQ(beats["numbers"], base64("\x01\x02"));
    // 12,000 and 11,999 hundredths: 0x2EE0 and 0x2EDF.
    EXPECT_EQ(beats["bpm"], base64(std::string_view("\xE0\x2E\0\0\xDF\x2E\0\0", 8)));
}

TEST(viewJson, PacksWaves) {
    TrackReport report = test::exampleReport();
    report.analysis.loudWave = {{1.0F, 3}};
    report.analysis.dotsWave = {};
    report.analysis.zoomWave = {{31.0F, 0}, {4.0F, 7}};
    const Json waves = viewJson(report, {})["waves"];
    // 1.0 is 0x3F800000.
    EXPECT_EQ(waves["loud"]["levels"], base64(std::string_view("\0\0\x80\x3F", 4)));
    EXPECT_EQ(waves["loud"]["colors"], base64("\x03"));
    EXPECT_EQ(waves["dots"]["levels"], "");
    EXPECT_EQ(waves["zoom"]["pointsPerSecond"], 150);
    EXPECT_EQ(waves["zoom"]["points"], base64("\xF8\x27"));
}

TEST(viewJson, HasTheRestAsTheDocumentOfAnAnalysis) {
    TrackReport report = test::exampleReport();
    report.keyNotation = KeyNotation::german;
    const Json view = viewJson(report, {{"double", 0.0, "doubled"}, {"key", 12.0, "A minor"}});
    EXPECT_EQ(view["tempo"]["bpm"], 120.0);
    EXPECT_EQ(view["key"]["name"], "A minor");
    EXPECT_EQ(view["keyNotation"], "german");
    EXPECT_EQ(view["corrections"], Json::parse(R"([
        {"kind":"double","value":0.0,"text":"doubled"},
        {"kind":"key","value":12.0,"text":"A minor"}])"));
}

TEST(viewJson, IsWholeWhereNothingWasFound) {
    const Json view = viewJson(test::emptyReport(), {});
    EXPECT_EQ(view["tempo"]["bpm"], nullptr);
    EXPECT_EQ(view["key"], nullptr);
    EXPECT_EQ(view["keyNotation"], nullptr);
    EXPECT_EQ(view["beats"]["frames"], "");
    ASSERT_EQ(view["keys"].size(), 24U);
    EXPECT_EQ(view["keys"][12]["name"], "A minor");
    EXPECT_EQ(view["corrections"], Json::array());
}

}  // namespace
}  // namespace output
