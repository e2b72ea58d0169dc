// SPDX-License-Identifier: MIT
#include <csignal>

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using nlohmann::json;
using test::runTool;
using test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr int kRate = 44100;
constexpr int kAMinor = 12;

class TagCommand : public testing::Test {
protected:
    /** Twenty seconds of a cadence in A minor with kicks of 120 BPM. */
    std::string write(const std::string& name, const test::FileKind& kind, double seconds = 20.0) {
        test::Sound sound = test::cadence(kRate, 2, seconds, kAMinor, 440.0);
        test::mixInto(sound, test::kicks(kRate, seconds, 0.4));
        const std::string path = folder_.file(name);
        test::writeAudioFile(path, kind, sound);
        return path;
    }

    static json fieldsOf(const ToolRun& run) {
        return json::parse(run.out).at("tracks").at(0).at("fields");
    }

    test::TemporaryFolder folder_;
};

TEST_F(TagCommand, OnlyShowsWhatItWouldDo) {
    const std::string track = write("a.flac", {"flac", "flac"});
    const std::string before = test::readFile(track);
    for (const char* option : {"--dry-run", "-q"}) {
        const ToolRun run = runTool({"tag", option, track});
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        EXPECT_THAT(run.out, HasSubstr("  tags     not written: --write does it\n"));
        EXPECT_THAT(run.out, HasSubstr("  + BPM         120.00\n"));
        EXPECT_THAT(run.out, HasSubstr("  + INITIALKEY  Am\n"));
    }
    EXPECT_EQ(test::readFile(track), before);
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac"));
}

TEST_F(TagCommand, WritesOnceAndFindsNothingToDoThen) {
    const std::string track = write("a.mp3", {"mp3", "libmp3lame"});
    const ToolRun first = runTool({"tag", "--write", "--json", track});
    EXPECT_EQ(first.exitStatus, 0) << first.err;
    EXPECT_EQ(json::parse(first.out).at("format"), "beatatlas.tags");
    EXPECT_EQ(json::parse(first.out).at("tracks").at(0).at("written"), true);
    EXPECT_EQ(
        fieldsOf(first).at(0),
        json({{"field", "TBPM"}, {"action", "added"}, {"before", nullptr}, {"found", "120"}}));
    EXPECT_EQ(fieldsOf(first).size(), 3U);
    const std::string written = test::readFile(track);
    const ToolRun second = runTool({"tag", "--write", track});
    EXPECT_THAT(second.out, HasSubstr("  tags     nothing to change\n"));
    EXPECT_EQ(test::readFile(track), written);
}

TEST_F(TagCommand, KeepsWhatIsThereUnlessTold) {
    const std::string track =
        write("a.flac", {"flac", "flac", "", false, "BPM=60:INITIALKEY=\x01zz"});
    const ToolRun kept = runTool({"tag", "--write", track});
    EXPECT_THAT(kept.out, HasSubstr("= BPM         60 (kept; --overwrite makes it 120.00)\n"));
    EXPECT_THAT(kept.out, HasSubstr("= INITIALKEY  \\x01zz (kept; --overwrite makes it Am)\n"));
    EXPECT_THAT(kept.out, HasSubstr("nothing to change"));
    const ToolRun replaced =
        runTool({"tag", "--write", "--overwrite", "--key-notation", "camelot", track});
    EXPECT_THAT(replaced.out, HasSubstr("  - BPM         60\n  + BPM         120.00\n"));
    EXPECT_THAT(replaced.out, HasSubstr("  + INITIALKEY  8A\n"));
}

TEST_F(TagCommand, SettlesTempoAndKeyEachForItself) {
    const std::string track = write("a.flac", {"flac", "flac"});
    EXPECT_THAT(runTool({"tag", "--no-key", track}).out, Not(HasSubstr("INITIALKEY")));
    EXPECT_THAT(runTool({"tag", "--tempo", "off", track}).out, Not(HasSubstr("BPM")));
    EXPECT_EQ(runTool({"tag", "--tempo", "off", "--no-key", track}).exitStatus, 2);
    EXPECT_EQ(runTool({"tag", "--write", "--dry-run", track}).exitStatus, 2);
    EXPECT_EQ(runTool({"tag", "--backup", track}).exitStatus, 2);
}

TEST_F(TagCommand, WritesNothingOfSilence) {
    const std::string track = folder_.file("a.flac");
    test::writeAudioFile(track, {"flac", "flac"}, test::tone(kRate, 2, 10.0, 440.0, 0.0));
    const std::string before = test::readFile(track);
    const ToolRun run = runTool({"tag", "--write", track});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("  tags     nothing to write\n"));
    EXPECT_EQ(test::readFile(track), before);
}

TEST_F(TagCommand, LetsNoFileThatCannotBeWrittenStopTheOthers) {
    const std::string first = write("a.flac", {"flac", "flac"});
    const std::string foreign = write("b.wma", {"asf", "wmav2"});
    const std::string locked = write("c.flac", {"flac", "flac"});
    std::filesystem::permissions(locked, std::filesystem::perms::owner_read);
    const std::string last = write("d.flac", {"flac", "flac"});
    const ToolRun run = runTool({"tag", "--write", first, foreign, locked, last});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("b.wma: is of a kind whose tags are not written"));
    EXPECT_THAT(run.err, HasSubstr("c.flac: cannot be written: Permission denied"));
    EXPECT_THAT(run.out, HasSubstr("d.flac\n"));
    EXPECT_THAT(runTool({"tag", last}).out, HasSubstr("nothing to change"));
}

TEST_F(TagCommand, TakesNamesOfAnyBytes) {
    const std::string name = "[a, b]\xFF\n.flac";
    const std::string track = write(name, {"flac", "flac"});
    const ToolRun run = runTool({"tag", "--write", "--backup", track});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(folder_.names(), ElementsAre(name, name + ".bak"));
    EXPECT_EQ(runTool({"tag", "--write", "--backup", "--overwrite", track}).exitStatus, 1);
}

TEST_F(TagCommand, TakesANameThatLooksLikeAnOption) {
    write("--write.flac", {"flac", "flac"});
    ToolRun run;
    run.arguments = {"tag", "--write", "--", "--write.flac"};
    run.folder = folder_.path();
    EXPECT_EQ(run.run().exitStatus, 0) << run.err;
    EXPECT_THAT(run.out, testing::StartsWith("--write.flac\n"));
    EXPECT_THAT(run.run().out, HasSubstr("nothing to change"));
}

/** A field of ID3 of version 2.2: a name of three letters, three bytes of length, Latin-1. */
std::string oldField(const std::string& name, const std::string& text) {
    return name + std::string("\0\0", 2) + static_cast<char>(text.size() + 1) + '\0' + text;
}

TEST_F(TagCommand, BringsTheOldestId3UpToVersion3) {
    const std::string track = write("a.mp3", {"mp3", "libmp3lame", "id3v2_version=0"});
    const std::string fields = oldField("TT2", "Title") + oldField("TBP", "97");
    const std::string head = std::string("ID3\2\0\0\0\0\0", 9) + static_cast<char>(fields.size());
    test::writeFile(track, head + fields + test::readFile(track));
    const ToolRun kept = runTool({"tag", "--write", track});
    EXPECT_THAT(kept.out, HasSubstr("  = TBPM  97 (kept; --overwrite makes it 120)"));
    const ToolRun run = runTool({"tag", "--write", "--overwrite", track});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("  - TBPM       97\n  + TBPM       120\n"));
    const std::string tagged = test::readFile(track);
    EXPECT_EQ(tagged.substr(0, 4), "ID3\3");
    EXPECT_THAT(tagged, HasSubstr("TIT2"));
    EXPECT_THAT(tagged, HasSubstr("Title"));
}

std::string chunk(const std::string& name, const std::string& content) {
    return name + static_cast<char>(content.size()) + std::string(3, '\0') + content;
}

TEST_F(TagCommand, LeavesTheOtherTagsOfAWaveFileAsTheyAre) {
    const std::string track = write("a.wav", {"wav", "pcm_s16le"});
    const std::string info = chunk("LIST", "INFO" + chunk("INAM", "A title."));
    std::string bytes = test::readFile(track) + info;
    for (std::size_t i = 0; i < 4; ++i)
        bytes[4 + i] = static_cast<char>((bytes.size() - 8) >> (8 * i));
    test::writeFile(track, bytes);
    const ToolRun run = runTool({"tag", "--write", track});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(test::readFile(track), HasSubstr(info));
    EXPECT_THAT(test::readFile(track), HasSubstr("TKEY"));
}

TEST_F(TagCommand, RefusesStandardInputAndLeavesAFileOfThatNameAlone) {
    const std::string track = write("-", {"flac", "flac"}, 2.0);
    const std::string before = test::readFile(track);
    ToolRun run;
    run.arguments = {"tag", "--write", "--", "-"};
    run.folder = folder_.path();
    EXPECT_EQ(run.run().exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("is standard input, which has no tags"));
    EXPECT_EQ(test::readFile(track), before);
}

TEST_F(TagCommand, StopsOnRequestAndLeavesTheFileAsItWas) {
    const std::string track = write("a.flac", {"flac", "flac"}, 120.0);
    const std::string before = test::readFile(track);
    ToolRun run;
    run.arguments = {"tag", "--write", track};
    run.hasTerminal = true;
    run.signalAtProgress = SIGINT;
    run.run();
    EXPECT_EQ(run.exitStatus, 128 + SIGINT);
    EXPECT_EQ(test::readFile(track), before);
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac"));
}

}  // namespace
}  // namespace app
