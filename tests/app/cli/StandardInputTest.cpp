// SPDX-License-Identifier: MIT
// Tracks that come in by standard input, through a pipe or from a file.
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "media/writeFully.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::runTool;
using test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;

/** The tool with these bytes coming in through a pipe. */
ToolRun runPiped(const std::vector<std::string>& arguments, const std::string& bytes,
                 const std::string& temporaryFolder = "/tmp") {
    int ends[2] = {};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    std::signal(SIGPIPE, SIG_IGN);
    std::thread writer([&] {
        media::writeFully(ends[1], bytes.data(), bytes.size());
        close(ends[1]);
    });
    ToolRun run;
    run.arguments = arguments;
    run.input = ends[0];
    run.environment = {{"TMPDIR", temporaryFolder}};
    run.run();
    close(ends[0]);
    writer.join();
    return run;
}

/** As the same track is reported that has a name. */
std::string renamed(std::string text, const std::string& from) {
    return text.replace(text.find(from), from.size(), "-");
}

class StandardInput : public testing::Test {
protected:
    StandardInput() {
        test::mixInto(sound_, test::cadence(44100, 2, 8.0, 3, 440.0));
        test::writeAudioFile(track_, {"wav", "pcm_s16le"}, sound_);
    }

    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("a.wav");
    test::Sound sound_ = test::kicks(44100, 8.0, 0.5);
};

TEST_F(StandardInput, GivesTheSameResultsAsTheFile) {
    const std::string bytes = test::readFile(track_);
    const std::vector<std::vector<std::string>> commands = {{"analyze"},
                                                            {"analyze", "--json", "--memory=1M"},
                                                            {"key"},
                                                            {"pitch"},
                                                            {"export", "--to=csv-tracks"}};
    for (std::vector<std::string> command : commands) {
        std::vector<std::string> named = command;
        named.push_back(track_);
        command.push_back("-");
        const ToolRun piped = runPiped(command, bytes);
        EXPECT_EQ(piped.exitStatus, 0) << piped.err;
        EXPECT_EQ(piped.out, renamed(runTool(named).out, track_));
    }
}

TEST_F(StandardInput, MayBeAnyContainer) {
    for (const auto& [muxer, encoder] : {std::pair{"flac", "flac"},
                                         {"mp3", "libmp3lame"},
                                         {"ipod", "aac"},
                                         {"ogg", "libvorbis"}}) {
        const std::string file = folder_.file("other");
        test::writeAudioFile(file, {muxer, encoder}, sound_);
        const ToolRun run = runPiped({"analyze", "-"}, test::readFile(file));
        EXPECT_EQ(run.out, renamed(runTool({"analyze", file}).out, file)) << muxer;
    }
}

TEST_F(StandardInput, MayBeDrawn) {
    const ToolRun run =
        runPiped({"draw", "-", "-d", folder_.file("pictures")}, test::readFile(track_));
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_NE(test::readFile(folder_.file("pictures/stdin.png")), "");
}

TEST_F(StandardInput, IsTakenAsItIsFromAFile) {
    ToolRun run;
    run.arguments = {"analyze", "-"};
    run.input = open(track_.c_str(), O_RDONLY | O_CLOEXEC);
    run.environment = {{"TMPDIR", "/nonexistent"}};
    run.run();
    close(run.input);
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(run.out, renamed(runTool({"analyze", track_}).out, track_));
}

// A WAV of FFmpeg's muxer has its samples last. As many frames, so that nothing but the account of
// the file differs.
TEST_F(StandardInput, MayBeSamplesWithoutAHeader) {
    for (const auto& [encoder, samples, bytes] : {std::tuple{"pcm_u8", "u8", 1},
                                                  {"pcm_s16le", "s16le", 2},
                                                  {"pcm_s24le", "s24le", 3},
                                                  {"pcm_s32le", "s32le", 4},
                                                  {"pcm_f32le", "f32le", 4},
                                                  {"pcm_f64le", "f64le", 8}}) {
        const std::string file = folder_.file("samples");
        test::writeAudioFile(file, {"wav", encoder}, sound_);
        const std::string whole = test::readFile(file);
        const std::size_t count = sound_.frames() * static_cast<std::size_t>(bytes);
        ASSERT_GT(whole.size(), count);
        const ToolRun raw = runPiped({"analyze", "--raw", std::string(samples) + ":44100:1", "-"},
                                     whole.substr(whole.size() - count));
        EXPECT_EQ(raw.exitStatus, 0) << raw.err;
        EXPECT_EQ(raw.out, renamed(runTool({"analyze", file}).out, file)) << samples;
    }
}

TEST_F(StandardInput, TellsWhatTheSamplesWereTakenFor) {
    const ToolRun run = runPiped({"analyze", "--json", "--raw=s16be:22050:1", "-"},
                                 std::string(2 * 22050 * 3, '\0'));
    EXPECT_THAT(run.out, HasSubstr(R"("audio":{"container":"s16be","codec":"pcm_s16be",)"
                                   R"("channels":1,"sampleRate":22050})"));
    EXPECT_THAT(run.out, HasSubstr("\"seconds\":3.0,"));
}

// Samples that end within a frame are not what they were said to be, or not all of it.
TEST_F(StandardInput, RefusesSamplesThatEndWithinAFrame) {
    const std::string bytes(44100 * 4 + 3, '\0');
    const ToolRun refused = runPiped({"analyze", "--raw=s16le:44100:2", "-"}, bytes);
    EXPECT_EQ(refused.exitStatus, 1);
    EXPECT_THAT(refused.err, HasSubstr("-: is cut off"));
    const ToolRun taken = runPiped({"analyze", "--partial", "--raw=s16le:44100:2", "-"}, bytes);
    EXPECT_EQ(taken.exitStatus, 0) << taken.err;
    EXPECT_THAT(taken.out, HasSubstr("0:01.00"));
}

TEST_F(StandardInput, RefusesWhatCannotBeATrack) {
    EXPECT_THAT(runPiped({"analyze", "-"}, "").err, HasSubstr("-: is empty"));
    EXPECT_THAT(runPiped({"analyze", "-"}, "no music").err, HasSubstr("-: is not an audio file"));
    EXPECT_THAT(runPiped({"analyze", "--raw=s16le:44100:2", "-"}, "abc").err,
                HasSubstr("beatatlas: -: "));
    const ToolRun twice = runPiped({"analyze", "-", "-"}, "");
    EXPECT_EQ(twice.exitStatus, 2);
    EXPECT_THAT(twice.err, HasSubstr("standard input (-) can be read only once"));
    EXPECT_THAT(runTool({"analyze", "--raw=s16le:44100:2", track_}).err,
                HasSubstr("the FILE - is missing"));
    EXPECT_THAT(runTool({"analyze", "--raw=s16:44100:2", "-"}).err, HasSubstr("not s16:44100:2"));
}

TEST_F(StandardInput, TellsWhereItCannotBeKept) {
    const ToolRun run = runPiped({"analyze", "-"}, test::readFile(track_), "/nonexistent");
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("-: standard input cannot be kept in /nonexistent: No such"));
}

TEST_F(StandardInput, LeavesNothingInTheTemporaryFolder) {
    const ToolRun run = runPiped({"analyze", "-"}, test::readFile(track_), folder_.path());
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(folder_.names(), ElementsAre("a.wav"));
}

TEST_F(StandardInput, IsNoFileCalledByADash) {
    std::filesystem::rename(track_, folder_.file("-"));
    ToolRun run;
    run.arguments = {"analyze", "./-"};
    run.folder = folder_.path();
    EXPECT_EQ(run.run().exitStatus, 0) << run.err;
    EXPECT_THAT(run.out, testing::StartsWith("./-\n"));
}

}  // namespace
}  // namespace app
