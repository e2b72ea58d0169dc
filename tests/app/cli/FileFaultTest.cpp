// SPDX-License-Identifier: MIT
// Files that fail while they are worked on: every command says what happened in one line and leaves
// nothing half-written.
#include <algorithm>
#include <csignal>

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::runTool;
using test::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/** Each command, with a long track: what happens at the first progress happens while it is read. */
class FileFault : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        test::writeAudioFile(track_, {"wav", "pcm_s16le"}, test::clicks(44100, 2, 60.0, {0.5}));
    }

    std::vector<std::string> argumentsFor(const std::string& file) const {
        std::vector<std::string> arguments = {GetParam()};
        if (GetParam() == "draw")
            arguments.insert(arguments.end(), {"-o", folder_.file("out.png")});
        if (GetParam() == "export")
            arguments.insert(arguments.end(), {"--to=jams", "-o", folder_.file("out.jams")});
        if (GetParam() == "cut") arguments.insert(arguments.end(), {"-o", folder_.file("out.wav")});
        arguments.push_back(file);
        return arguments;
    }

    ToolRun runMeanwhile(const std::function<void()>& fault) const {
        ToolRun run;
        run.arguments = argumentsFor(track_);
        const std::vector<std::string> slowed = slowReading();
        run.arguments.insert(run.arguments.end(), slowed.begin(), slowed.end());
        run.hasTerminal = true;
        run.atProgress = fault;
        return run.run();
    }

    /** With one thread a track is decoded no faster than it is analysed: the fault comes before the
     *  end. */
    virtual std::vector<std::string> slowReading() const {
        if (GetParam() == "pitch" || GetParam() == "cut") return {};
        return {"--threads=1"};
    }

    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("track.wav");
};

/** The commands that read a track more than once, where it does not fit into memory: for the
 *  session's key, which `analyze` reports in JSON only. */
class FileFaultBetweenPasses : public FileFault {
protected:
    std::vector<std::string> slowReading() const override {
        return {"--threads=1", "--memory=1M", "--json"};
    }
};

TEST_P(FileFaultBetweenPasses, TellsThatTheFileIsGone) {
    const ToolRun run = runMeanwhile([&] { std::filesystem::remove(track_); });
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("track.wav: cannot be opened: No such file or directory"));
    EXPECT_THAT(folder_.names(), ElementsAre());
}

TEST_P(FileFault, TellsThatTheFileGrew) {
    const ToolRun run = runMeanwhile([&] {
        std::ofstream(track_, std::ios::binary | std::ios::app) << std::string(400000, '\1');
    });
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("track.wav: has changed while it was being read"));
    EXPECT_THAT(folder_.names(), ElementsAre("track.wav"));
}

TEST_P(FileFault, TellsThatTheFileShrank) {
    const ToolRun run = runMeanwhile([&] { std::filesystem::resize_file(track_, 100000); });
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("track.wav: has changed while it was being read"));
    EXPECT_THAT(folder_.names(), ElementsAre("track.wav"));
}

TEST_P(FileFaultBetweenPasses, TellsThatAnotherTrackStandsInItsPlace) {
    const std::string other = folder_.file("other.wav");
    std::filesystem::copy_file(track_, other);
    const ToolRun run = runMeanwhile([&] { std::filesystem::rename(other, track_); });
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("track.wav: has changed while it was being read"));
}

TEST_P(FileFault, StopsOnCtrlCAndLeavesNothing) {
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        ToolRun run;
        run.arguments = argumentsFor(track_);
        run.hasTerminal = true;
        run.signalAtProgress = signalNumber;
        run.run();
        EXPECT_EQ(run.exitStatus, 128 + signalNumber);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(folder_.names(), ElementsAre("track.wav"));
    }
}

TEST_P(FileFault, RefusesWhatIsNoReadableFile) {
    const std::string secret = folder_.file("secret.wav");
    std::filesystem::copy_file(track_, secret);
    chmod(secret.c_str(), 0);
    const std::string pipe = folder_.file("pipe.wav");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string circle = folder_.file("circle.wav");
    std::filesystem::create_symlink(circle, circle);
    const std::vector<std::pair<std::string, std::string>> reasons = {
        {secret, "cannot be opened: Permission denied"},
        {folder_.path(), "is a folder, not an audio file"},
        {pipe, "is not a regular file"},
        {circle, "cannot be opened: Too many levels of symbolic links"},
        {"/dev/null", "is not a regular file"},
        {"", "'': is an empty name, which no file has"},
        {track_ + "/inside", "cannot be opened: Not a directory"},
        {std::string(5000, 'a'), "cannot be opened: File name too long"}};
    for (const auto& [file, reason] : reasons) {
        const ToolRun run = runTool(argumentsFor(file));
        EXPECT_EQ(run.exitStatus, 1) << file;
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, HasSubstr(reason));
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    }
    EXPECT_THAT(folder_.names(), Not(testing::Contains(testing::StartsWith("out"))));
}

TEST_P(FileFault, WorksOnFilesOfAnyName) {
    for (const std::string name : {"two  words.wav", "new\nline.wav", "\xFF\xFE.wav", "é.wav"}) {
        const std::string file = folder_.file(name);
        test::writeAudioFile(file, {"wav", "pcm_s16le"}, test::clicks(44100, 2, 1.0, {0.5}));
        const ToolRun run = runTool(argumentsFor(file));
        EXPECT_EQ(run.exitStatus, 0) << run.err;
        EXPECT_EQ(run.err, "");
    }
}

const auto nameOfCommand = [](const auto& command) { return command.param; };

INSTANTIATE_TEST_SUITE_P(Commands, FileFault,
                         testing::Values("analyze", "draw", "pitch", "key", "cut", "export"),
                         nameOfCommand);
INSTANTIATE_TEST_SUITE_P(Commands, FileFaultBetweenPasses, testing::Values("analyze", "key"),
                         nameOfCommand);

}  // namespace
}  // namespace app
