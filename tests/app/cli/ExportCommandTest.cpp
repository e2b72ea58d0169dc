// SPDX-License-Identifier: MIT
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>

#include "output/formats/ExportFormat.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::OutputPlace;
using test::runTool;
using test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class ExportCommand : public testing::Test {
protected:
    void SetUp() override {
        for (const std::string& track : {track_, other_})
            test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::kicks(44100, 12.0, 0.8));
    }

    ToolRun exported(std::vector<std::string> words) const {
        words.insert(words.begin(), "export");
        return runTool(words);
    }

    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("a.wav");
    std::string other_ = folder_.file("b.wav");
};

TEST_F(ExportCommand, WritesEveryFormatToStandardOutput) {
    for (const output::ExportFormat& format : output::exportFormats()) {
        const ToolRun run = exported({"--to", format.name, track_});
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        EXPECT_NE(run.out, "");
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(exported({"--to", format.name, "-o", "-", track_}).out, run.out) << format.name;
    }
}

TEST_F(ExportCommand, WritesTheDocumentOfAnalyze) {
    EXPECT_EQ(exported({"--to=json", track_, other_}).out,
              runTool({"analyze", "--json", track_, other_}).out);
}

TEST_F(ExportCommand, PutsAllTracksIntoOneFileWhereTheFormatHoldsThem) {
    const std::string table = folder_.file("table.csv");
    EXPECT_EQ(exported({"--to=csv-tracks", "-o", table, track_, other_}).exitStatus, 0);
    const std::string text = test::readFile(table);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
}

TEST_F(ExportCommand, GivesEachTrackAFileInAFolderOrByAPattern) {
    EXPECT_EQ(exported({"--to=midi", "-d", folder_.file("x"), track_, other_}).exitStatus, 0);
    EXPECT_EQ(exported({"--to=midi", "-o", folder_.file("y/"), track_, other_}).exitStatus, 0);
    EXPECT_EQ(
        exported({"--to=jams", "-o", folder_.file("z/{name} (2).jams"), track_, other_}).exitStatus,
        0);
    for (const char* file : {"x/a.mid", "x/b.mid", "y/a.mid", "y/b.mid", "z/a (2).jams"})
        EXPECT_TRUE(std::filesystem::exists(folder_.file(file))) << file;
}

TEST_F(ExportCommand, ReplacesInAFolderOnlyWhenToldTo) {
    const std::string labels = folder_.file("a.txt");
    test::writeFile(labels, "mine");
    const std::vector<std::string> words = {"--to=audacity-bars", "-d", folder_.path(), track_};
    const ToolRun refused = exported(words);
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_THAT(refused.err, HasSubstr("a.txt is there already (--overwrite replaces it)"));
    EXPECT_EQ(test::readFile(labels), "mine");
    std::vector<std::string> told = words;
    told.push_back("--overwrite");
    EXPECT_EQ(exported(told).exitStatus, 0);
    EXPECT_NE(test::readFile(labels), "mine");
}

TEST_F(ExportCommand, NeverReplacesATrack) {
    const ToolRun one = exported({"--to=csv", "-o", track_, other_, track_});
    EXPECT_EQ(one.exitStatus, 2);
    EXPECT_THAT(one.err, HasSubstr("the result would replace one of the tracks"));
    const std::string pattern = folder_.file("{name}.wav");
    const ToolRun each = exported({"--to=csv", "--overwrite", "-o", pattern, track_});
    EXPECT_EQ(each.exitStatus, 1);
    EXPECT_THAT(each.err, HasSubstr("it is one of the tracks"));
    EXPECT_THAT(test::readFile(track_), StartsWith("RIFF"));
}

TEST_F(ExportCommand, RefusesWhatDoesNotGoTogether) {
    const auto refusal = [&](const std::vector<std::string>& words) {
        const ToolRun run = exported(words);
        EXPECT_EQ(run.exitStatus, 2) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        return run.err;
    };
    EXPECT_THAT(refusal({track_}), HasSubstr("say in which format: --to FORMAT"));
    EXPECT_THAT(refusal({"--to=jam", track_}),
                HasSubstr("waveform-json, m3u8, not jam; did you mean jams?"));
    EXPECT_THAT(refusal({"--to=jams", track_, other_}),
                HasSubstr("jams holds one track: several go to a folder (-d DIR), or by a "
                          "pattern (-o '{name}.jams')"));
    EXPECT_THAT(refusal({"--to=csv", "--waves", track_}), HasSubstr("--waves goes with"));
    EXPECT_THAT(refusal({"--to=waveform", "--offset=5", track_}),
                HasSubstr("begin with the music"));
    EXPECT_THAT(refusal({"--to=csv", "--peak-bits=8", track_}), HasSubstr("--peak-bits go with"));
    EXPECT_THAT(refusal({"--to=waveform", "--samples-per-pixel=1", track_}),
                HasSubstr("takes a whole number from 2"));
}

TEST_F(ExportCommand, GoesOnBehindATrackThatFails) {
    const ToolRun run =
        exported({"--to=midi", "-d", folder_.file("x"), folder_.file("missing"), track_});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_TRUE(std::filesystem::exists(folder_.file("x/a.mid")));
    const ToolRun lines = exported({"--to=jsonl", folder_.file("missing"), track_});
    EXPECT_EQ(lines.exitStatus, 1);
    EXPECT_THAT(lines.out, HasSubstr("\"error\":\"cannot be opened"));
    EXPECT_EQ(std::count(lines.out.begin(), lines.out.end(), '\n'), 2);
}

// FFmpeg's AAC encoder begins 1024 frames early, and MP4 says so.
TEST_F(ExportCommand, CountsFromTheFilesBeginningWhereToldTo) {
    const std::string aac = folder_.file("c.m4a");
    test::writeAudioFile(aac, {"ipod", "aac"}, test::kicks(44100, 12.0, 0.8));
    const auto trackOf = [&](const std::vector<std::string>& words) {
        std::vector<std::string> all = {"--to=jsonl", aac};
        all.insert(all.end(), words.begin(), words.end());
        return nlohmann::json::parse(exported(all).out);
    };
    const auto music = trackOf({});
    const auto file = trackOf({"--origin", "file", "--offset", "-10"});
    ASSERT_FALSE(music["beats"].empty());
    EXPECT_EQ(music["origin"]["droppedFrames"], 1024);
    EXPECT_EQ(file["origin"]["at"], "file");
    EXPECT_NEAR(file["beats"][0]["seconds"].get<double>(),
                music["beats"][0]["seconds"].get<double>() + 1024.0 / 44100.0 - 0.01, 1e-9);
    // 1024 frames less the 441 of ten milliseconds.
    EXPECT_EQ(file["beats"][0]["frame"].get<int>(), music["beats"][0]["frame"].get<int>() + 583);
}

// A disk that is full in the middle: half of what the whole document takes.
TEST_F(ExportCommand, LeavesNothingBehindWhenTheFileMayNotGrow) {
    struct rlimit own = {};
    getrlimit(RLIMIT_FSIZE, &own);
    const std::string out = folder_.file("out");
    for (const output::ExportFormat& format : output::exportFormats()) {
        const std::vector<std::string> words = {"--to", format.name, "-o", out, track_};
        ASSERT_EQ(exported(words).exitStatus, 0);
        const std::string whole = test::readFile(out);
        ASSERT_GT(whole.size(), 1U) << format.name;
        const struct rlimit half = {whole.size() / 2, own.rlim_max};
        for (const bool isThere : {true, false}) {
            if (!isThere) std::filesystem::remove(out);
            setrlimit(RLIMIT_FSIZE, &half);
            const ToolRun run = exported(words);
            setrlimit(RLIMIT_FSIZE, &own);
            EXPECT_EQ(run.exitStatus, 1);
            EXPECT_THAT(run.err, HasSubstr("out cannot be written: File too large")) << format.name;
            // The document of before, or none.
            EXPECT_EQ(test::readFile(out), isThere ? whole : "") << format.name;
            EXPECT_EQ(folder_.names().size(), isThere ? 3U : 2U);
        }
    }
}

TEST_F(ExportCommand, TellsThatStandardOutputIsFull) {
    for (const output::ExportFormat& format : output::exportFormats()) {
        ToolRun run;
        run.arguments = {"export", "--to", format.name, track_};
        run.output = OutputPlace::fullDisk;
        run.run();
        EXPECT_EQ(run.exitStatus, 1) << format.name;
        EXPECT_THAT(run.err, HasSubstr("standard output cannot be written: No space left"));
    }
}

TEST_F(ExportCommand, WritesChaptersWithKeysInAnyNotation) {
    const ToolRun run =
        exported({"--to=ffmetadata", "--key-notation=solfege", "--tempo=off", track_});
    EXPECT_THAT(run.out, testing::ContainsRegex("title=no tempo, (Do|Re|Mi|Fa|Sol|La|Si)"));
}

}  // namespace
}  // namespace app
