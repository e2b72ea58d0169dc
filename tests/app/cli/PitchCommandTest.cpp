// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::runTool;
using test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;

using Json = nlohmann::json;

class PitchCommand : public testing::Test {
protected:
    std::string writeTrack(const std::string& name, const test::Sound& sound) {
        const std::string path = folder_.file(name);
        test::writeAudioFile(path, {"wav", "pcm_s16le"}, sound);
        return path;
    }

    Json onlyTrack(const ToolRun& run) {
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        const Json document = Json::parse(run.out);
        EXPECT_EQ(document["tracks"].size(), 1U);
        return document["tracks"][0];
    }

    test::TemporaryFolder folder_;
};

TEST_F(PitchCommand, FindsWhatAToneIsTunedTo) {
    for (int hertz = 434; hertz <= 446; ++hertz) {
        const int rate = hertz % 2 == 0 ? 44100 : 48000;
        const std::string track = writeTrack("tone.wav", test::tone(rate, 2, 3.0, hertz, 0.3));
        EXPECT_EQ(onlyTrack(runTool({"pitch", "--json", track}))["pitch"], hertz);
        const ToolRun full = runTool({"pitch", "--json", "--full-rate", track});
        EXPECT_EQ(onlyTrack(full)["pitch"], hertz);
        // Every other candidate at first: the neighbour of the best one may never be tried.
        const ToolRun quick = runTool({"pitch", "--json", "--mode", "3", track});
        EXPECT_NEAR(onlyTrack(quick)["pitch"].get<double>(), hertz, 1.0);
    }
}

TEST_F(PitchCommand, FindsWhatChordsAreTunedTo) {
    for (const int hertz : {436, 440, 444}) {
        const std::string track = writeTrack("chords.wav", test::cadence(44100, 1, 12.0, 3, hertz));
        const Json thinned = onlyTrack(runTool({"pitch", "--json", track}));
        EXPECT_NEAR(thinned["pitch"].get<double>(), hertz, 3.0);
        const Json full = onlyTrack(runTool({"pitch", "--json", "--full-rate", track}));
        EXPECT_NEAR(full["pitch"].get<double>(), hertz, 1.0);
    }
}

TEST_F(PitchCommand, PrintsASummaryOfEachTrack) {
    const std::string track = writeTrack("a name.wav", test::tone(44100, 2, 3.0, 442.0, 0.3));
    const ToolRun run = runTool({"pitch", track, folder_.file("none"), track});
    const std::string summary = track + "\n  audio    pcm_s16le, 44,100 Hz, stereo\n" +
                                "  length   0:03.00  (132,300 frames)\n" +
                                "  pitch    A4 = 442 Hz\n";
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.out, summary + "\n" + summary);
    EXPECT_EQ(run.err, "beatatlas: " + folder_.file("none") +
                           ": cannot be opened: No such file or directory\n" +
                           "beatatlas: 2 tracks done, 1 failed\n");
}

TEST_F(PitchCommand, PrintsOneJsonDocumentOfItsOwnForAllTracks) {
    const std::string track = writeTrack("a.wav", test::tone(32000, 1, 3.0, 440.0, 0.3));
    const Json document = Json::parse(runTool({"pitch", "--json", track, "missing"}).out);
    EXPECT_EQ(document["format"], "beatatlas.pitch");
    EXPECT_EQ(document["version"], 2);
    ASSERT_EQ(document["tracks"].size(), 2U);
    std::vector<std::string> members;
    for (const auto& [member, value] : document["tracks"][0].items()) members.push_back(member);
    EXPECT_THAT(members, testing::UnorderedElementsAre(
                             "file", "audio", "partial", "damagedPackets", "repeatedPackets",
                             "gaps", "lacksEnd", "formatChanges", "origin", "sampleRate", "frames",
                             "seconds", "pitch", "mode", "fullRate"));
    EXPECT_EQ(document["tracks"][0]["sampleRate"], 48000);
    EXPECT_EQ(document["tracks"][0]["frames"], 144000);
    EXPECT_TRUE(document["tracks"][1].contains("error"));
}

TEST_F(PitchCommand, FindsNoneInSilenceNorInLessThanAQuarterOfASecond) {
    for (const auto& sound :
         {test::tone(44100, 2, 3.0, 440.0, 0.0), test::tone(44100, 2, 0.2, 440.0, 0.3)}) {
        const std::string track = writeTrack("a.wav", sound);
        EXPECT_TRUE(onlyTrack(runTool({"pitch", "--json", track}))["pitch"].is_null());
        const ToolRun run = runTool({"pitch", track});
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_THAT(run.out, HasSubstr("  pitch    no pitch found\n"));
    }
}

TEST_F(PitchCommand, RefusesACutOffTrackUnlessAskedToTakeIt) {
    const std::string whole = writeTrack("a.wav", test::tone(44100, 2, 3.0, 441.0, 0.3));
    test::copyShortened(whole, folder_.file("cut.wav"), 44100 * 4);
    EXPECT_EQ(runTool({"pitch", folder_.file("cut.wav")}).exitStatus, 1);
    const ToolRun taken = runTool({"pitch", "--partial", "--json", folder_.file("cut.wav")});
    EXPECT_THAT(taken.err, HasSubstr("warning: is cut off"));
    EXPECT_EQ(onlyTrack(taken)["partial"], true);
    EXPECT_EQ(onlyTrack(taken)["pitch"], 441);
}

}  // namespace
}  // namespace app
