// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
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
using testing::StartsWith;

class DrawCommand : public testing::Test {
protected:
    void SetUp() override {
        test::writeAudioFile(track_, {"flac", "flac"}, test::clicks(48000, 2, 3.0, {0.5, 1.5}));
    }

    test::TemporaryFolder folder_;
    std::string track_ = folder_.file("a.flac");
};

TEST_F(DrawCommand, WritesAPngAndPrintsNothing) {
    const ToolRun run = runTool({"draw", track_, "-o", folder_.file("out.png")});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(test::readFile(folder_.file("out.png")), StartsWith("\x89PNG"));
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac", "out.png"));
}

TEST_F(DrawCommand, WritesAnSvgOfTheStretchAskedFor) {
    const ToolRun run =
        runTool({"draw", "--from", "1", "--span", "0.5", "--width", "1000", "--no-key", "--tempo",
                 "off", track_, "--output", folder_.file("out.svg")});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(test::readFile(folder_.file("out.svg")), HasSubstr("width=\"1000px\""));
}

// The track has three seconds.
TEST_F(DrawCommand, TakesClockTimesAndRefusesThoseBehindTheEnd) {
    const std::string picture = folder_.file("out.svg");
    const auto draw = [&](const std::string& from) {
        return runTool({"draw", track_, "-o", picture, "--span", "0:01", "--from", from});
    };
    EXPECT_EQ(draw("1.5").exitStatus, 0);
    const std::string inSeconds = test::readFile(picture);
    EXPECT_EQ(draw("0:01.5").exitStatus, 0);
    EXPECT_EQ(test::readFile(picture), inSeconds);
    EXPECT_EQ(draw("0:02").exitStatus, 0);
    EXPECT_NE(test::readFile(picture), inSeconds);
    const std::string before = test::readFile(picture);
    for (const char* beyond : {"3", "1:02:03.5"}) {
        const ToolRun run = draw(beyond);
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.err, HasSubstr("a.flac: ends at 0:03.00, before --from "));
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(test::readFile(picture), before);
    }
    EXPECT_EQ(draw("1:75").exitStatus, 2);
}

TEST_F(DrawCommand, ReplacesNoFileThatMayNotBeWritten) {
    const std::string picture = folder_.file("out.png");
    test::writeFile(picture, "old");
    chmod(picture.c_str(), 0444);
    const ToolRun run = runTool({"draw", track_, "-o", picture});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "beatatlas: " + picture + " cannot be written: Permission denied\n");
    EXPECT_EQ(test::readFile(picture), "old");
}

TEST_F(DrawCommand, ReplacesNoFileInAFolderThatMayNotBeWritten) {
    const std::string picture = folder_.file("out.png");
    test::writeFile(picture, "old");
    chmod(folder_.path().c_str(), 0555);
    const ToolRun run = runTool({"draw", track_, "-o", picture});
    chmod(folder_.path().c_str(), 0755);
    EXPECT_THAT(run.err, HasSubstr("it is replaced as a whole, and its folder: Permission denied"));
}

TEST_F(DrawCommand, NeedsNoStandardOutput) {
    ToolRun run;
    run.arguments = {"draw", track_, "-o", folder_.file("out.png")};
    run.output = test::OutputPlace::closed;
    run.run();
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(test::readFile(folder_.file("out.png")), StartsWith("\x89PNG"));
}

TEST_F(DrawCommand, LeavesNothingBehindWhenTheTrackFails) {
    test::writeFile(folder_.file("out.png"), "old");
    const ToolRun run = runTool({"draw", folder_.file("missing"), "-o", folder_.file("out.png")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("missing: cannot be opened"));
    EXPECT_EQ(test::readFile(folder_.file("out.png")), "old");
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac", "out.png"));
}

TEST_F(DrawCommand, TellsWhyThePictureCannotBeWritten) {
    const ToolRun missing = runTool({"draw", track_, "-o", folder_.file("no/out.png")});
    EXPECT_EQ(missing.exitStatus, 1);
    EXPECT_THAT(missing.err, HasSubstr("no/out.png cannot be written: No such file or directory"));
}

TEST_F(DrawCommand, LeavesNothingBehindWhenTheFileMayNotGrow) {
    struct rlimit own = {};
    getrlimit(RLIMIT_FSIZE, &own);
    const struct rlimit small = {1024, own.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const ToolRun run = runTool({"draw", track_, "-o", folder_.file("out.png")});
    setrlimit(RLIMIT_FSIZE, &own);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("out.png cannot be written: File too large"));
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac"));
}

TEST_F(DrawCommand, NeverReplacesTheTrackItself) {
    const std::string track = folder_.file("track.png");
    test::writeFile(track, test::readFile(track_));
    const ToolRun run = runTool({"draw", track, "-o", track});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.err, HasSubstr("would replace the track"));
    EXPECT_EQ(test::readFile(track), test::readFile(track_));
}

TEST_F(DrawCommand, GoesByTheEndingOfTheName) {
    EXPECT_EQ(runTool({"draw", track_, "-o", folder_.file("a.SVG")}).exitStatus, 0);
    EXPECT_THAT(test::readFile(folder_.file("a.SVG")), StartsWith("<?xml"));
    for (const char* name : {"a.jpg", "png", "a.png.bak", "svg"}) {
        const ToolRun run = runTool({"draw", track_, "-o", folder_.file(name)});
        EXPECT_EQ(run.exitStatus, 2) << name;
        EXPECT_THAT(run.err, HasSubstr("must end in .png or .svg")) << name;
    }
}

}  // namespace
}  // namespace app
