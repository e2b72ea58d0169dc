// SPDX-License-Identifier: MIT
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "output/picture/PictureLayout.h"
#include "output/picture/Theme.h"
#include "support/AudioFileWriter.h"
#include "support/Pixels.h"
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

TEST_F(DrawCommand, PutsOnePictureForEachTrackIntoAFolder) {
    const std::string other = folder_.file("b.wav");
    test::writeAudioFile(other, {"wav", "pcm_s16le"}, test::clicks(48000, 2, 3.0, {0.5, 1.5}));
    const ToolRun run = runTool({"draw", track_, other, "-d", folder_.file("pictures/new")});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "beatatlas: 2 tracks done\n");
    for (const char* name : {"pictures/new/a.png", "pictures/new/b.png"})
        EXPECT_THAT(test::readFile(folder_.file(name)), StartsWith("\x89PNG"));
    const ToolRun scalable =
        runTool({"draw", track_, "-d", folder_.file("pictures"), "--format", "svg"});
    EXPECT_EQ(scalable.exitStatus, 0) << scalable.err;
    EXPECT_THAT(test::readFile(folder_.file("pictures/a.svg")), StartsWith("<?xml"));
}

TEST_F(DrawCommand, DrawsTheOtherTracksWhenOneFails) {
    const std::string bad = folder_.file("bad.mp3");
    test::writeFile(bad, "no music");
    const std::string last = folder_.file("c.flac");
    test::writeFile(last, test::readFile(track_));
    const ToolRun run =
        runTool({"draw", bad, track_, folder_.file("none"), last, "-d", folder_.path()});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("bad.mp3: is not an audio file"));
    EXPECT_THAT(run.err, HasSubstr("none: cannot be opened"));
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac", "a.png", "bad.mp3", "c.flac", "c.png"));
}

TEST_F(DrawCommand, ReplacesPicturesInAFolderOnlyWhenAsked) {
    test::writeFile(folder_.file("a.png"), "old");
    const ToolRun kept = runTool({"draw", track_, "-d", folder_.path()});
    EXPECT_EQ(kept.exitStatus, 1);
    EXPECT_THAT(kept.err, HasSubstr("a.png is there already (--overwrite replaces it)"));
    EXPECT_EQ(test::readFile(folder_.file("a.png")), "old");
    EXPECT_EQ(runTool({"draw", track_, "-d", folder_.path(), "--overwrite"}).exitStatus, 0);
    EXPECT_THAT(test::readFile(folder_.file("a.png")), StartsWith("\x89PNG"));
}

TEST_F(DrawCommand, NeverReplacesATrackByAPictureOfAnother) {
    const std::string track = folder_.file("a.png");
    test::writeFile(track, test::readFile(track_));
    const ToolRun run = runTool({"draw", track_, track, "-d", folder_.path(), "--overwrite"});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(test::readFile(track), test::readFile(track_));
    const ToolRun alone = runTool({"draw", track, "-d", folder_.path(), "--overwrite"});
    EXPECT_EQ(alone.exitStatus, 1);
    EXPECT_THAT(alone.err, HasSubstr("a.png cannot be written: it is one of the tracks"));
    EXPECT_EQ(test::readFile(track), test::readFile(track_));
}

TEST_F(DrawCommand, SaysWhichPlaceGoesWithWhichTracks) {
    EXPECT_THAT(runTool({"draw", track_}).err, HasSubstr("-o OUT.png, or -d DIR"));
    EXPECT_THAT(runTool({"draw", track_, track_, "-o", folder_.file("x.png")}).err,
                HasSubstr("several tracks go to a folder: -d DIR"));
    for (const std::vector<std::string>& wrong :
         {std::vector<std::string>{"-o", folder_.file("x.png"), "-d", folder_.path()},
          {"-o", folder_.file("x.png"), "--format", "svg"},
          {"-o", folder_.file("x.png"), "--overwrite"},
          {"-d", folder_.path(), "--format", "jpg"}}) {
        std::vector<std::string> arguments = {"draw", track_};
        arguments.insert(arguments.end(), wrong.begin(), wrong.end());
        EXPECT_EQ(runTool(arguments).exitStatus, 2) << testing::PrintToString(wrong);
    }
    const ToolRun noFolder = runTool({"draw", track_, "-d", track_});
    EXPECT_EQ(noFolder.exitStatus, 1);
    EXPECT_THAT(noFolder.err, HasSubstr("a.flac cannot be made: "));
    EXPECT_THAT(folder_.names(), ElementsAre("a.flac"));
}

TEST_F(DrawCommand, DrawsInTheThemeAskedFor) {
    std::string pictures[2];
    const char* themes[] = {"dark", "light"};
    for (int i = 0; i < 2; ++i) {
        const std::string out = folder_.file(themes[i] + std::string(".png"));
        EXPECT_EQ(runTool({"draw", track_, "-o", out, "--theme", themes[i]}).exitStatus, 0);
        pictures[i] = test::readFile(out);
    }
    EXPECT_EQ(runTool({"draw", track_, "-o", folder_.file("usual.png")}).exitStatus, 0);
    EXPECT_EQ(test::readFile(folder_.file("usual.png")), pictures[0]);
    EXPECT_NE(pictures[0], pictures[1]);
    EXPECT_EQ(runTool({"draw", track_, "-o", folder_.file("x.png"), "--theme", "red"}).exitStatus,
              2);
}

// Cairo's own letters stand in: the words are drawn all the same.
TEST_F(DrawCommand, NeedsNoFont) {
    test::writeFile(folder_.file("fonts.conf"),
                    "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">"
                    "<fontconfig><cachedir>" +
                        folder_.file("cache") + "</cachedir></fontconfig>");
    setenv("FONTCONFIG_FILE", folder_.file("fonts.conf").c_str(), 1);
    const ToolRun png = runTool({"draw", track_, "-o", folder_.file("out.png")});
    const ToolRun svg = runTool({"draw", track_, "-o", folder_.file("out.svg")});
    unsetenv("FONTCONFIG_FILE");
    EXPECT_EQ(png.exitStatus, 0);
    EXPECT_EQ(png.err, "");
    EXPECT_EQ(svg.exitStatus, 0);
    const test::Pixels picture(folder_.file("out.png"));
    const output::PictureLayout layout(1600);
    const auto ground = test::hexOf(output::theme(output::ThemeName::dark).background);
    EXPECT_GT(picture.countOthers(ground, layout.title), 200);
    EXPECT_GT(picture.countOthers(ground, layout.answers), 200);
}

}  // namespace
}  // namespace app
