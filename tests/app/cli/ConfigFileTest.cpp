// SPDX-License-Identifier: MIT
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::ToolRun;
using testing::HasSubstr;
using testing::Not;

class ConfigFile : public testing::Test {
protected:
    void SetUp() override {
        test::writeAudioFile(track_, {"wav", "pcm_s16le"}, test::cadence(44100, 2, 6.0, 3, 440.0));
        std::filesystem::create_directories(folder_.file("beatatlas"));
    }

    /** The user's own settings. */
    void settle(const std::string& text) const {
        test::writeFile(folder_.file("beatatlas/config.ini"), text);
    }

    ToolRun run(const std::vector<std::string>& arguments) const {
        ToolRun run;
        run.arguments = arguments;
        run.configFolder = folder_.path();
        return run.run();
    }

    /** What is said of a file of these settings. */
    std::string refusal(const std::string& text) const {
        settle(text);
        const ToolRun refused = run({"analyze", track_});
        EXPECT_EQ(refused.exitStatus, 2);
        EXPECT_EQ(refused.out, "");
        EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 1) << refused.err;
        return refused.err;
    }

    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("c.wav");
};

TEST_F(ConfigFile, GivesOptionsTheirValues) {
    settle("# my own\n; two kinds of remarks\nkey-notation = german # umlauts or not\n"
           "[export]\n  to = \"csv-tracks\"\n");
    EXPECT_THAT(run({"analyze", track_}).out, HasSubstr("C-Dur"));
    const ToolRun exported = run({"export", track_});
    EXPECT_EQ(exported.exitStatus, 0) << exported.err;
    EXPECT_THAT(exported.out, HasSubstr("C-Dur"));
}

TEST_F(ConfigFile, GivesWayToTheCommandLine) {
    settle("key-notation=german\nno-key=true\n");
    const ToolRun given = run({"analyze", "--key-notation", "camelot", "--no-key=false", track_});
    EXPECT_EQ(given.exitStatus, 0) << given.err;
    EXPECT_THAT(given.out, HasSubstr("8B"));
    EXPECT_THAT(given.out, Not(HasSubstr("Dur")));
}

// JSON has all notations, and the parser lets none be chosen for it; a range of BPM has a meaning
// for the auto tempo alone.
TEST_F(ConfigFile, LeavesOutWhatDoesNotGoWithTheCommandLine) {
    settle(
        "key-notation = german\nbpm-range = 85:170\nsection = 16\n[draw]\ndirectory = nowhere\n");
    EXPECT_EQ(run({"analyze", "--json", track_}).exitStatus, 0);
    EXPECT_EQ(run({"analyze", "--tempo=constant", track_}).exitStatus, 0);
    const std::string picture = folder_.file("out.png");
    EXPECT_EQ(run({"draw", track_, "-o", picture}).exitStatus, 0);
    EXPECT_TRUE(std::filesystem::exists(picture));
}

TEST_F(ConfigFile, IsAnotherOneOrNoneWhereToldSo) {
    settle("nonsense\n");
    const std::string other = folder_.file("other.ini");
    test::writeFile(other, "key-notation = solfege\r\n");
    EXPECT_THAT(run({"analyze", "--config", other, track_}).out, HasSubstr("Do major"));
    EXPECT_THAT(run({"analyze", "--config=" + other, track_}).out, HasSubstr("Do major"));
    EXPECT_THAT(run({"analyze", "--no-config", track_}).out, HasSubstr("C major"));
    EXPECT_EQ(run({"analyze", "--help"}).exitStatus, 0);
    EXPECT_EQ(run({"--version"}).exitStatus, 0);
    const ToolRun missing = run({"analyze", "--config", folder_.file("none"), track_});
    EXPECT_EQ(missing.exitStatus, 2);
    EXPECT_THAT(missing.err, HasSubstr("none cannot be opened: No such file or directory"));
}

// Whoever opened a pipe would wait until somebody writes to it.
TEST_F(ConfigFile, IsReadFromRegularFilesAlone) {
    const std::string pipe = folder_.file("beatatlas/config.ini");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string sentence =
        " is not a regular file: settings are read from no other (see beatatlas analyze --help)\n";
    const ToolRun own = run({"analyze", track_});
    EXPECT_EQ(own.exitStatus, 2);
    EXPECT_EQ(own.err, "beatatlas: " + pipe + sentence);
    EXPECT_EQ(run({"analyze", "--no-config", track_}).exitStatus, 0);
    for (const std::string& path : {pipe, folder_.path()})
        EXPECT_EQ(run({"analyze", "--config", path, track_}).err, "beatatlas: " + path + sentence);
    EXPECT_THAT(run({"doctor"}).out, HasSubstr("failed  settings      " + pipe + " is not"));
    EXPECT_EQ(run({"analyze", "--config", "/dev/null", track_}).exitStatus, 0);
}

TEST_F(ConfigFile, IsRefusedWithFileAndLine) {
    EXPECT_THAT(refusal("\nkey-notatoin = german\n"),
                HasSubstr("beatatlas/config.ini:2: there is no option key-notatoin; did you mean "
                          "key-notation?"));
    EXPECT_THAT(refusal("[exprot]\nto = csv\n"),
                HasSubstr(":1: there is no command exprot; did you mean export?"));
    EXPECT_THAT(refusal("to = csv\n[lits]\n"),
                HasSubstr(":2: there is no command lits; did you mean list?"));
    EXPECT_THAT(refusal("[pitch]\nbpm-range = 80:160\n"),
                HasSubstr(":2: there is no option bpm-range"));
    EXPECT_THAT(refusal("memory = lots\n"), HasSubstr(":1: --memory: takes a size such as"));
    EXPECT_THAT(refusal("partial = maybe\n"),
                HasSubstr(":1: partial: takes true or false, not maybe"));
    EXPECT_THAT(refusal("memory\n"), HasSubstr(":1: is neither OPTION = VALUE nor [COMMAND]"));
    EXPECT_THAT(refusal("= 2G\n"), HasSubstr(":1: is neither"));
    EXPECT_THAT(refusal("[draw\n"), HasSubstr(":1: ] is missing"));
    EXPECT_THAT(refusal("[ ]\n"), HasSubstr(":1: [] names no command: [export], say"));
    EXPECT_THAT(refusal("memory = \"2G\n"), HasSubstr(":1: \" is missing"));
    for (const std::string end : {"help", "version", "config", "no-config", "FILE"})
        EXPECT_THAT(refusal(end + " = true\n"), HasSubstr(":1: there is no option " + end));
    EXPECT_THAT(refusal(std::string("a\0b\xFF = 1\n", 8)), HasSubstr(":1: there is no option a"));
    EXPECT_THAT(refusal(std::string(2 << 20, '#')), HasSubstr("too long for a file of settings"));
}

TEST_F(ConfigFile, IsLookedForWhereTheSystemKeepsSettings) {
    settle("key-notation = german\n");
    ToolRun atHome;
    atHome.arguments = {"analyze", track_};
    atHome.configFolder = "relative";
    atHome.environment = {{"HOME", folder_.file("home")}};
    std::filesystem::create_directories(folder_.file("home/.config/beatatlas"));
    test::writeFile(folder_.file("home/.config/beatatlas/config.ini"), "key-notation=openkey");
    EXPECT_THAT(atHome.run().out, HasSubstr("1d"));
}

}  // namespace
}  // namespace app
