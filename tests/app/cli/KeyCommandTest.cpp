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
using testing::HasSubstr;

using Json = nlohmann::json;

constexpr int kCMajor = 3;
constexpr int kEMinor = 19;

class KeyCommand : public testing::Test {
protected:
    std::string writeCadence(int key, double referenceHz, double seconds = 12.0) {
        const std::string path = folder_.file("a track.wav");
        test::writeAudioFile(path, {"wav", "pcm_s16le"},
                             test::cadence(44100, 2, seconds, key, referenceHz));
        return path;
    }

    Json keyOf(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"key", "--json"});
        const ToolRun run = runTool(arguments);
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        return Json::parse(run.out)["tracks"][0];
    }

    test::TemporaryFolder folder_;
};

TEST_F(KeyCommand, FindsTheKeyOfACadence) {
    for (const int key : {kCMajor, kEMinor, 10, 14}) {
        const std::string track = writeCadence(key, 440.0);
        for (const char* mode : {"0", "4"}) {
            const Json found = keyOf({"--mode", mode, track});
            EXPECT_EQ(found["buffer"]["number"], key);
            EXPECT_EQ(found["key"]["number"], key);
            EXPECT_EQ(found["mode"], *mode - '0');
            EXPECT_NEAR(found["pitch"].get<double>(), 440.0, 3.0);
            EXPECT_EQ(found["pitchGiven"], false);
        }
    }
}

TEST_F(KeyCommand, UsesAnotherHopForLongTracksWithTheSameAnswer) {
    const std::string track = writeCadence(kCMajor, 440.0, 32.0);
    for (const char* mode : {"0", "1", "2", "3"})
        EXPECT_EQ(keyOf({"--mode", mode, track})["buffer"]["name"], "C major");
}

// A reference a semitone higher makes every note a semitone lower.
TEST_F(KeyCommand, NamesTheNotesByThePitchItIsGiven) {
    const std::string track = writeCadence(kCMajor, 440.0);
    const Json found = keyOf({"--pitch", "466.16", track});
    EXPECT_EQ(found["pitch"], 466.16);
    EXPECT_EQ(found["pitchGiven"], true);
    EXPECT_EQ(found["buffer"]["name"], "B major");
    EXPECT_EQ(found["buffer"]["camelot"], "1B");
    EXPECT_EQ(found["buffer"]["openKey"], "6d");
}

TEST_F(KeyCommand, TellsBothKeysOfAnalyze) {
    const std::string track = writeCadence(kEMinor, 440.0);
    const Json document = Json::parse(runTool({"analyze", "--json", "--tempo", "off", track}).out);
    EXPECT_EQ(keyOf({track})["key"], document["tracks"][0]["key"]);
    EXPECT_EQ(keyOf({track})["session"], document["tracks"][0]["sessionKey"]);
    EXPECT_EQ(keyOf({track})["session"]["ranking"].size(), 24U);
}

TEST_F(KeyCommand, PrintsAllKeysAndTheRanking) {
    const ToolRun run = runTool({"key", "--pitch", "440", writeCadence(kCMajor, 440.0)});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("  key      C major, 8B, 1d, number 3"));
    EXPECT_THAT(run.out, HasSubstr("\n  tuning   A4 = "));
    EXPECT_THAT(run.out, HasSubstr("  pitch    A4 = 440 Hz, as given\n"
                                   "  buffer   C major, 8B, 1d, number 3\n"
                                   "  session  C major, 8B, 1d, number 3; next "));
    EXPECT_THAT(run.out, HasSubstr("  ranking  C major 100.0 %, "));
}

// 442 Hz are 7.85 cents above 440.
TEST_F(KeyCommand, TellsTheTuningMoreFinelyThanThePitch) {
    const Json tuning = keyOf({writeCadence(kCMajor, 442.0)})["key"]["tuning"];
    EXPECT_NEAR(tuning["hz"].get<double>(), 442.0, 0.3);
    EXPECT_NEAR(tuning["cents"].get<double>(), 7.85, 1.2);
}

TEST_F(KeyCommand, NamesAllKeysInTheNotationAskedFor) {
    const std::string out =
        runTool({"key", "--key-notation", "camelot", writeCadence(kCMajor, 440.0)}).out;
    EXPECT_THAT(out, HasSubstr("  key      8B"));
    EXPECT_THAT(out, HasSubstr("  buffer   8B\n  session  8B; next "));
    EXPECT_THAT(out, HasSubstr("  ranking  8B 100.0 %, "));
}

TEST_F(KeyCommand, FindsNoneInSilence) {
    const std::string track = folder_.file("silence.wav");
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::tone(44100, 2, 4.0, 440.0, 0.0));
    for (const auto& arguments : {std::vector<std::string>{track}, {"--pitch", "440", track}}) {
        const Json found = keyOf(arguments);
        EXPECT_TRUE(found["key"].is_null());
        EXPECT_TRUE(found["buffer"].is_null());
        EXPECT_TRUE(found["session"].is_null());
    }
    EXPECT_THAT(
        runTool({"key", track}).out,
        HasSubstr("  key      no key found\n  pitch    no pitch found\n  buffer   no key found\n"
                  "  session  no key found\n"));
}

TEST_F(KeyCommand, NeedsTwoSecondsForThatOfTheBuffer) {
    EXPECT_TRUE(keyOf({writeCadence(kCMajor, 440.0, 1.9)})["buffer"].is_null());
    EXPECT_FALSE(keyOf({writeCadence(kCMajor, 440.0, 2.1)})["buffer"].is_null());
}

}  // namespace
}  // namespace app
