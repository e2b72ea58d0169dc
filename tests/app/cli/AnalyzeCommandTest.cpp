// SPDX-License-Identifier: MIT
#include <csignal>

#include <algorithm>
#include <filesystem>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::OutputPlace;
using test::runTool;
using test::ToolRun;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Json = nlohmann::json;

class AnalyzeCommand : public testing::Test {
protected:
    std::string writeTrack(const std::string& name) {
        const std::string path = folder_.file(name);
        test::writeAudioFile(path, {"wav", "pcm_s16le"},
                             test::clicks(44100, 2, 5.0, {0.5, 1.0, 1.5, 2.0, 2.5}));
        return path;
    }

    ToolRun runInFolder(const std::vector<std::string>& arguments) {
        ToolRun run;
        run.arguments = arguments;
        run.folder = folder_.path();
        return run.run();
    }

    test::TemporaryFolder folder_;
};

TEST_F(AnalyzeCommand, PrintsASummaryAndNothingElse) {
    const std::string track = writeTrack("track.wav");
    const ToolRun run = runTool({"analyze", track});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, StartsWith(track + "\n  audio    pcm_s16le, 44,100 Hz, stereo\n"));
    EXPECT_THAT(run.out, HasSubstr("0:05.00  (220,500 frames)"));
    // Nine out of ten lines that the library prints are not ASCII: none of them is here.
    EXPECT_TRUE(std::all_of(run.out.begin(), run.out.end(),
                            [](char c) { return static_cast<unsigned char>(c) < 128; }));
}

TEST_F(AnalyzeCommand, PrintsOneJsonDocumentForAllTracks) {
    const ToolRun run = runTool(
        {"analyze", "--json", writeTrack("a.wav"), folder_.file("none"), writeTrack("b.wav")});
    EXPECT_EQ(run.exitStatus, 1);
    const Json document = Json::parse(run.out);
    EXPECT_EQ(document["format"], "beatatlas.analysis");
    EXPECT_EQ(document["version"], 2);
    ASSERT_EQ(document["tracks"].size(), 3U);
    EXPECT_EQ(document["tracks"][0]["frames"], 220500);
    EXPECT_EQ(document["tracks"][1]["file"], folder_.file("none"));
    EXPECT_EQ(document["tracks"][1]["error"], "cannot be opened: No such file or directory");
    EXPECT_EQ(document["tracks"][2]["frames"], 220500);
    EXPECT_FALSE(document["tracks"][0].contains("waves"));
}

TEST_F(AnalyzeCommand, AddsTheWavesWhenAsked) {
    const ToolRun run = runTool({"analyze", "--json", "--waves", writeTrack("a.wav")});
    const Json waves = Json::parse(run.out)["tracks"][0]["waves"];
    EXPECT_EQ(waves["loud"]["levels"].size(), 400U);
    EXPECT_EQ(waves["dots"]["levels"].size(), 100U);
    EXPECT_EQ(waves["zoom"]["levels"].size(), 750U);
}

// Text leaves the session's key out, and the pass it takes: the key must be the same.
TEST_F(AnalyzeCommand, TellsTheSameKeyInTextAsInJson) {
    const std::string track = folder_.file("cadence.wav");
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::cadence(44100, 2, 8.0, 13, 440.0));
    const Json found = Json::parse(runTool({"analyze", "--json", track}).out)["tracks"][0];
    EXPECT_EQ(found["key"]["number"], 13);
    EXPECT_EQ(found["key"]["sharps"], "A# minor");
    EXPECT_EQ(found["key"]["flats"], "Bb minor");
    EXPECT_EQ(found["sessionKey"]["ranking"].size(), 24U);
    EXPECT_THAT(runTool({"analyze", track}).out, HasSubstr("  key      Bb minor, 3A, 8m"));
    for (const auto& [notation, name] : {std::pair("standard", "Bb minor"),
                                         {"sharps", "A# minor"},
                                         {"flats", "Bb minor"},
                                         {"camelot", "3A"},
                                         {"openkey", "8m"}})
        EXPECT_THAT(runTool({"analyze", "--key-notation", notation, track}).out,
                    HasSubstr(std::string("  key      ") + name));
}

TEST_F(AnalyzeCommand, AnalysesTheOtherTracksWhenOneFails) {
    test::writeFile(folder_.file("empty.mp3"), "");
    const ToolRun run = runTool({"analyze", writeTrack("a.wav"), folder_.file("empty.mp3"),
                                 folder_.path(), writeTrack("b.wav")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, HasSubstr(folder_.file("a.wav") + "\n"));
    EXPECT_THAT(run.out, HasSubstr("\n\n" + folder_.file("b.wav") + "\n"));
    EXPECT_EQ(run.err, "beatatlas: " + folder_.file("empty.mp3") + ": is empty\n" +
                           "beatatlas: " + folder_.path() + ": is a folder, not an audio file\n" +
                           "beatatlas: 2 tracks done, 2 failed\n");
    const ToolRun quiet = runTool({"analyze", "-q", folder_.file("a.wav"), folder_.file("b.wav")});
    EXPECT_EQ(quiet.err, "");
}

TEST_F(AnalyzeCommand, RefusesACutOffTrackUnlessAskedToTakeIt) {
    test::copyShortened(writeTrack("a.wav"), folder_.file("cut.wav"), 200000);
    const ToolRun refused = runTool({"analyze", folder_.file("cut.wav")});
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_THAT(refused.err, HasSubstr("cut.wav: is cut off"));
    const ToolRun taken = runTool({"analyze", "--partial", "--json", folder_.file("cut.wav")});
    EXPECT_EQ(taken.exitStatus, 0);
    EXPECT_THAT(taken.err, HasSubstr("cut.wav: warning: is cut off"));
    EXPECT_EQ(Json::parse(taken.out)["tracks"][0]["partial"], true);
    EXPECT_EQ(Json::parse(taken.out)["tracks"][0]["frames"], 220500 - 50000);
}

// A FLAC that declares half of its frames: the last 32 of the 36 bits that count them, behind 22
// bytes.
TEST_F(AnalyzeCommand, TellsOnStandardErrorHowAFileWasReadWhenAsked) {
    const std::string track = folder_.file("a.flac");
    test::writeAudioFile(track, {"flac", "flac"}, test::clicks(44100, 2, 4.0, {0.5, 1.0}));
    std::string bytes = test::readFile(track);
    bytes.replace(22, 4, std::string("\x00\x01\x58\x88", 4));
    test::writeFile(track, bytes);
    const ToolRun quiet = runTool({"analyze", "--json", track});
    const ToolRun verbose = runTool({"analyze", "--json", "--verbose", track});
    EXPECT_EQ(verbose.out, quiet.out);
    EXPECT_EQ(quiet.err, "");
    EXPECT_THAT(verbose.err, HasSubstr("a.flac: note: declares 88200 frames and has 176400"));
}

// A rate of 1 Hz makes a track of five seconds one of two days: it is the rate that is wrong, in
// bytes 24 to 27 of a WAV file.
TEST_F(AnalyzeCommand, NamesARateThatCannotBe) {
    const std::string track = writeTrack("slow.wav");
    std::string bytes = test::readFile(track);
    bytes.replace(24, 4, std::string("\x01\0\0\0", 4));
    test::writeFile(track, bytes);
    for (const char* command : {"analyze", "pitch", "key"})
        EXPECT_EQ(runTool({command, track}).err,
                  "beatatlas: " + track +
                      ": has a sample rate of 1 Hz, which cannot be converted\n");
}

// 1e30 is 600 dB over full scale: 20 dB for each power of ten.
TEST_F(AnalyzeCommand, WarnsOfSoundThatIsFarTooLoud) {
    const std::string track = folder_.file("loud.wav");
    test::Sound sound = test::clicks(44100, 2, 2.0, {0.5, 1.0});
    sound.channels[0][1000] = 1e30F;
    sound.channels[1][1000] = -3.0F;
    test::writeAudioFile(track, {"wav", "pcm_f32le"}, sound);
    const std::string warning = "beatatlas: " + track + ": warning: ";
    for (const char* command : {"analyze", "pitch", "key"}) {
        const ToolRun run = runTool({command, track});
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_EQ(run.err, warning + "is too loud: clipped 2 samples, up to 600.0 dB over full "
                                     "scale\n");
    }
    sound.channels[0][1000] = std::numeric_limits<float>::infinity();
    sound.channels[1][1000] = std::numeric_limits<float>::quiet_NaN();
    test::writeAudioFile(track, {"wav", "pcm_f32le"}, sound);
    EXPECT_EQ(runTool({"analyze", track}).err,
              warning + "is too loud: clipped 1 sample, up to infinity\n" + warning +
                  "holds no number in 1 sample; silence was put there\n");
}

TEST_F(AnalyzeCommand, FindsTheSameWithLittleMemoryAndOneThread) {
    const std::string track = writeTrack("a.wav");
    const std::string usual = runTool({"analyze", "--json", "--waves", track}).out;
    for (const char* effort : {"--threads=1", "--threads=3", "--memory=1", "--memory=1.5GiB"})
        EXPECT_EQ(runTool({"analyze", "--json", "--waves", effort, track}).out, usual) << effort;
}

TEST_F(AnalyzeCommand, RefusesEffortThatIsNone) {
    const std::string track = writeTrack("a.wav");
    for (const char* effort : {"--threads=0", "--threads=x", "--memory=0", "--memory=much"})
        EXPECT_EQ(runTool({"analyze", effort, track}).exitStatus, 2) << effort;
}

TEST_F(AnalyzeCommand, TakesNamesThatLookLikeOptionsCommandsOrPatterns) {
    const std::vector<std::string> names = {"-x.wav", "--json", "draw", "analyze", "++",
                                            "--",     "[a,b]",  "{a}",  "a=b",     "a b",
                                            "a\nb",   "'q\"",   "$(x)"};
    for (const std::string& name : names) {
        writeTrack(name);
        const ToolRun run = runInFolder({"analyze", "--json", "--", name});
        EXPECT_EQ(run.exitStatus, 0) << name << ": " << run.err;
        EXPECT_EQ(Json::parse(run.out)["tracks"][0]["file"], name);
    }
}

TEST_F(AnalyzeCommand, TakesAllTheseNamesAtOnceToo) {
    std::vector<std::string> arguments = {"analyze", "--json", "--"};
    for (const char* name : {"[a,b]", "a,b", "-x", "[]", ""}) arguments.emplace_back(name);
    for (const char* name : {"[a,b]", "a,b", "-x", "[]"}) writeTrack(name);
    const Json tracks = Json::parse(runInFolder(arguments).out)["tracks"];
    ASSERT_EQ(tracks.size(), 5U);
    for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(tracks[i]["file"], arguments[i + 3]);
    EXPECT_TRUE(tracks[4].contains("error"));
}

TEST_F(AnalyzeCommand, StaysUtf8WithNamesThatAreNot) {
    writeTrack("caf\xE9.wav");
    const ToolRun run = runInFolder({"analyze", "--json", "caf\xE9.wav", "\xFF.wav"});
    EXPECT_EQ(run.exitStatus, 1);
    const Json tracks = Json::parse(run.out)["tracks"];
    EXPECT_EQ(tracks[0]["fileBytes"], "636166e92e776176");
    EXPECT_EQ(tracks[1]["fileBytes"], "ff2e776176");
    EXPECT_EQ(run.err, "beatatlas: \\xFF.wav: cannot be opened: No such file or directory\n"
                       "beatatlas: 1 track done, 1 failed\n");
}

TEST_F(AnalyzeCommand, TellsWhenItsResultsCannotBeWritten) {
    const std::string track = writeTrack("a.wav");
    for (const auto place : {OutputPlace::fullDisk, OutputPlace::closedPipe, OutputPlace::closed}) {
        for (const char* form : {"--json", "--quiet"}) {
            ToolRun run;
            run.arguments = {"analyze", form, track};
            run.output = place;
            run.run();
            EXPECT_EQ(run.exitStatus, 1);
            EXPECT_THAT(run.err, StartsWith("beatatlas: standard output cannot be written: "));
        }
    }
}

TEST_F(AnalyzeCommand, ShowsProgressOnATerminalOnly) {
    const std::string track = writeTrack("a.wav");
    ToolRun watched;
    watched.arguments = {"analyze", track};
    watched.hasTerminal = true;
    watched.run();
    EXPECT_THAT(watched.err, HasSubstr("a.wav  ["));
    EXPECT_THAT(watched.err, testing::EndsWith("\x1B[K")) << "wiped";
    EXPECT_THAT(watched.out, Not(HasSubstr("  [")));
    ToolRun quiet = watched;
    quiet.arguments = {"analyze", "--quiet", track};
    quiet.err.clear();
    quiet.run();
    EXPECT_EQ(quiet.err, "");
}

TEST_F(AnalyzeCommand, StopsOnRequestAndCompletesItsDocument) {
    // Long enough that the first progress comes hours before its end.
    const std::string track = writeTrack("long.wav");
    std::string header = test::readFile(track).substr(0, 44);
    constexpr std::uint32_t kBytes = 2000000000U;
    for (int i = 0; i < 4; ++i)
        header[40 + static_cast<std::size_t>(i)] = static_cast<char>((kBytes >> (8 * i)) & 0xFF);
    test::writeFile(track, header);
    std::filesystem::resize_file(track, 44ULL + kBytes);
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        ToolRun run;
        run.arguments = {"analyze", "--json", writeTrack("a.wav"), track};
        run.hasTerminal = true;
        run.signalAtProgress = signalNumber;
        run.run();
        EXPECT_EQ(run.exitStatus, 128 + signalNumber);
        EXPECT_TRUE(Json::accept(run.out)) << run.out;
    }
}

class AnalyzeTempo : public AnalyzeCommand {
protected:
    Json tempoWith(std::vector<std::string> options) {
        const std::string path = folder_.file("kicks.wav");
        test::writeAudioFile(path, {"wav", "pcm_s16le"}, test::kicks(44100, 30.0, 0.5));
        options.insert(options.begin(), {"analyze", "--json", "--no-key", path});
        const ToolRun run = runTool(options);
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        return Json::parse(run.out)["tracks"][0];
    }
};

TEST_F(AnalyzeTempo, IsDoubledOrHalvedIntoTheRange) {
    const Json plain = tempoWith({});
    const double bpm = plain["tempo"]["bpm"];
    ASSERT_GT(bpm, 0.0);
    for (const double factor : {0.5, 1.0, 2.0}) {
        const int low = static_cast<int>(0.7 * factor * bpm);
        const Json track =
            tempoWith({"--bpm-range", std::to_string(low) + ":" + std::to_string(2 * low)});
        EXPECT_NEAR(track["tempo"]["bpm"].get<double>(), factor * bpm, 0.011);
        EXPECT_EQ(track["tempo"]["rawBpm"], bpm);
        EXPECT_NEAR(static_cast<double>(track["beats"].size()),
                    factor * static_cast<double>(plain["beats"].size()), 1.0);
    }
}

TEST_F(AnalyzeTempo, TakesTheRangeByTheClockToo) {
    const Json inSeconds = tempoWith({"--tempo", "simple", "--range", "12.5"});
    EXPECT_EQ(tempoWith({"--tempo", "simple", "--range", "0:12.50"}), inSeconds);
    EXPECT_NE(tempoWith({"--tempo", "simple", "--range", "0:04"}), inSeconds);
}

TEST_F(AnalyzeTempo, CountsTheBeatsOfABarThatIsKnown) {
    for (const int perBar : {3, 4}) {
        const Json beats = tempoWith({"--beats-per-bar", std::to_string(perBar)})["beats"];
        ASSERT_GT(beats.size(), 13U);
        for (std::size_t i = 1; i < beats.size(); ++i)
            EXPECT_EQ(beats[i]["beat"].get<int>(), beats[i - 1]["beat"].get<int>() % perBar + 1);
    }
}

TEST_F(AnalyzeTempo, RefusesRangesAndBarsThatItCannotTake) {
    const std::vector<std::vector<std::string>> kRefused = {
        {"--bpm-range", "100:150"},  // less than an octave
        {"--bpm-range", "120"},
        {"--bpm-range", "160:80"},
        {"--bpm-range", "a:b"},
        {"--beats-per-bar", "5"},
        {"--beats-per-bar", "0"},
        {"--tempo", "varied", "--bpm-range", "80:160"},
        {"--tempo", "simple", "--beats-per-bar", "4"},
    };
    for (std::vector<std::string> arguments : kRefused) {
        arguments.insert(arguments.begin(), "analyze");
        arguments.push_back("no-file.wav");
        EXPECT_EQ(runTool(arguments).exitStatus, 2) << arguments[1] << " " << arguments[2];
    }
}

}  // namespace
}  // namespace app
