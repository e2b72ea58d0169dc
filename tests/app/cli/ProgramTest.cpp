// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::OutputPlace;
using test::runTool;
using test::ToolRun;
using testing::HasSubstr;
using testing::StartsWith;

TEST(Program, PrintsHelpAsAResult) {
    const ToolRun run = runTool({"--help"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.err, "");
    for (const char* part :
         {"analyze", "draw", "pitch", "key", "cut", "--version", "Exit status", "130"}) {
        EXPECT_THAT(run.out, HasSubstr(part));
    }
}

TEST(Program, PrintsHelpForEachCommand) {
    const ToolRun analyze = runTool({"analyze", "--help"});
    EXPECT_EQ(analyze.exitStatus, 0);
    for (const char* part :
         {"FILE", "--json", "--waves", "--tempo", "--section", "--range", "--no-key",
          "--key-notation", "--memory", "--threads", "--partial", "--quiet", "--verbose"}) {
        EXPECT_THAT(analyze.out, HasSubstr(part));
    }
    const ToolRun draw = runTool({"draw", "--help"});
    EXPECT_EQ(draw.exitStatus, 0);
    for (const char* part : {"FILE", "--output", "--directory", "--format", "--overwrite", "--from",
                             "--span", "--width", "--theme", "--key-notation"})
        EXPECT_THAT(draw.out, HasSubstr(part));
    const ToolRun key = runTool({"key", "--help"});
    for (const char* part : {"FILE", "--json", "--pitch", "--mode", "--key-notation", "--partial"})
        EXPECT_THAT(key.out, HasSubstr(part));
    const ToolRun cut = runTool({"cut", "--help"});
    for (const char* part : {"--output", "--mode", "--div", "--float", "--partial"})
        EXPECT_THAT(cut.out, HasSubstr(part));
}

TEST(Program, PrintsItsVersion) {
    const ToolRun run = runTool({"--version"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, StartsWith("beatatlas "));
    EXPECT_THAT(run.out, HasSubstr("FFmpeg"));
}

// The next word would be taken for the value, and the track would be gone.
TEST(Program, RefusesAnOptionWhoseValueIsEmpty) {
    for (const std::string option : {"--memory=", "--threads=", "--tempo="}) {
        const ToolRun run = runTool({"analyze", option, "2", "x"});
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "beatatlas: " + option + " needs a value\n");
    }
    EXPECT_EQ(runTool({"analyze", "--", "--memory="}).exitStatus, 1) << "a file of that name";
}

TEST(Program, RefusesACommandLineItDoesNotUnderstand) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"sing"},
        {"analyze"},
        {"analyze", "--loud", "x"},
        {"analyze", "--tempo", "fast", "x"},
        {"analyze", "--section", "12", "x"},
        {"analyze", "--range", "-1", "x"},
        {"analyze", "--range", "nan", "x"},
        {"analyze", "--range", "5", "x"},
        {"analyze", "--section", "8", "x"},
        {"analyze", "--waves", "x"},
        {"analyze", "--key-notation", "german", "x"},
        {"analyze", "--json", "--key-notation", "camelot", "x"},
        {"draw", "x"},
        {"draw", "x", "-o", "y.jpg"},
        {"draw", "x", "y", "-o", "z.png"},
        {"draw", "x", "-o", "y.png", "--width", "5"},
        {"draw", "x", "-o", "y.png", "--span", "0"},
        {"pitch"},
        {"pitch", "--mode", "5", "x"},
        {"pitch", "--mode", "1.5", "x"},
        {"pitch", "--waves", "x"},
        {"key", "--pitch", "300", "x"},
        {"key", "--pitch", "nan", "x"},
        {"key", "--mode", "-1", "x"},
        {"cut", "x"},
        {"cut", "x", "-o", "-"},
        {"cut", "x", "-o", "y.mp3"},
        {"cut", "x", "-o", "y.wav", "--div", "3"},
        {"cut", "x", "-o", "y.wav", "--mode", "5"},
        {"cut", "x", "y", "-o", "z.wav"}};
    for (const auto& arguments : wrong) {
        const ToolRun run = runTool(arguments);
        EXPECT_EQ(run.exitStatus, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, StartsWith("beatatlas: ")) << testing::PrintToString(arguments);
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    }
}

// A number is what the name stands for inside, and no name.
TEST(Program, TellsTheNamesThatAnOptionTakes) {
    for (const std::string value : {"fast", "AUTO", "4"})
        EXPECT_EQ(runTool({"analyze", "--tempo", value, "x"}).err,
                  "beatatlas: --tempo: takes one of auto, constant, off, simple, varied, not " +
                      value + " (see beatatlas --help)\n");
    for (const std::string command : {"analyze", "key"})
        EXPECT_EQ(runTool({command, "--key-notation", "german", "x"}).err,
                  "beatatlas: --key-notation: takes one of camelot, flats, openkey, sharps, "
                  "standard, not german (see beatatlas --help)\n");
}

TEST(Program, NamesTheCommandItDoesNotKnow) {
    EXPECT_EQ(runTool({"si\nng"}).err,
              "beatatlas: there is no command si\\nng (see beatatlas --help)\n");
}

TEST(Program, TellsWhenItsResultsCannotBeWritten) {
    for (const auto place : {OutputPlace::fullDisk, OutputPlace::closedPipe, OutputPlace::closed}) {
        ToolRun run;
        run.arguments = {"--help"};
        run.output = place;
        run.run();
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.err, StartsWith("beatatlas: standard output cannot be written: "));
    }
}

}  // namespace
}  // namespace app
