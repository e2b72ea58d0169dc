// SPDX-License-Identifier: MIT
#include <array>
#include <csignal>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

#include "base/Interrupt.h"
#include "beatatlas/version.h"
#include "cli/Program.h"
#include "support/AudioFileWriter.h"
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
    EXPECT_EQ(run.out.substr(0, run.out.find('\n')), "beatatlas " BEATATLAS_VERSION);
    for (const char* library : {"\nFFmpeg ", "\nlibavcodec ", "\nlibsoxr ", "\nTagLib ",
                                "\nSQLite ", "\ncairo ", "\nPango "})
        EXPECT_THAT(run.out, HasSubstr(library));
}

// The next word would be taken for the value, and the track would be gone.
TEST(Program, RefusesAnOptionWhoseValueIsEmpty) {
    for (const std::string option : {"--memory=", "--threads=", "--tempo="}) {
        const ToolRun run = runTool({"analyze", option, "2", "x"});
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err,
                  "beatatlas: " + option + " needs a value (see beatatlas analyze --help)\n");
    }
    EXPECT_EQ(runTool({"analyze", "--", "--memory="}).exitStatus, 1) << "a file of that name";
}

TEST(Program, RefusesACommandLineItDoesNotUnderstand) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"sing"},
        {"help", "sing"},
        {"help", "draw", "cut"},
        {"--json", "x"},
        {"analyze"},
        {"analyze", "--loud", "x"},
        {"analyze", "--tempo", "fast", "x"},
        {"analyze", "--section", "12", "x"},
        {"analyze", "--range", "-1", "x"},
        {"analyze", "--range", "nan", "x"},
        {"analyze", "--range", "5", "x"},
        {"analyze", "--section", "8", "x"},
        {"analyze", "--waves", "x"},
        {"analyze", "--key-notation", "greek", "x"},
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
                      value + (value == "AUTO" ? "; did you mean auto?" : "") +
                      " (see beatatlas analyze --help)\n");
    for (const std::string command : {"analyze", "key"})
        EXPECT_EQ(runTool({command, "--key-notation", "greek", "x"}).err,
                  "beatatlas: --key-notation: takes one of camelot, flats, german, openkey, "
                  "sharps, solfege, standard, not greek (see beatatlas " +
                      command + " --help)\n");
}

TEST(Program, SaysWhatIsWrongAndWhereToReadMore) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> refusals = {
        {{}, "a command is missing (see beatatlas --help)"},
        {{"si\nng"}, "there is no command si\\nng (see beatatlas --help)"},
        {{"analize"}, "there is no command analize; did you mean analyze? (see beatatlas --help)"},
        {{"help", "dra"}, "there is no command dra; did you mean draw? (see beatatlas --help)"},
        {{"--json", "x"}, "a command comes first, then --json (see beatatlas --help)"},
        {{"analyze", "--wavs"},
         "there is no option --wavs; did you mean --waves? (see beatatlas analyze --help)"},
        {{"key", "--pich=440", "x"},
         "there is no option --pich=440; did you mean --pitch? (see beatatlas key --help)"},
        {{"list", "--catalogue", ""},
         "--catalogue needs a value, not an empty word (see beatatlas list --help)"},
        {{"merge", "a.sqlite", "-o", ""},
         "--output needs a value, not an empty word (see beatatlas merge --help)"},
        {{"analyze", "x", "--tempo"}, "--tempo needs a value (see beatatlas analyze --help)"},
        {{"cut", "x", "--div=2", "--div=4"},
         "--div may be given only once (see beatatlas cut --help)"},
        {{"cut", "x", "y", "-o", "z.wav"}, "y is one argument too many (see beatatlas cut --help)"},
        {{"cut", "-o", "z.wav", "--", "x", "-y"},
         "-y is one argument too many (see beatatlas cut --help)"},
        {{"pitch"}, "FILE is required (see beatatlas pitch --help)"},
        {{"analyze", "x", "--section", "8"},
         "--section goes with --tempo varied (see beatatlas analyze --help)"},
        {{"analyze", "-intro.mp3"},
         "there is no option -intro.mp3; a file -intro.mp3 is written ./-intro.mp3, or goes behind "
         "-- (see beatatlas analyze --help)"},
        {{"analyze", "-vox.wav"},
         "there is no option -ox.wav; a file -vox.wav is written ./-vox.wav, or goes behind -- "
         "(see "
         "beatatlas analyze --help)"}};
    for (const auto& [arguments, refusal] : refusals)
        EXPECT_EQ(runTool(arguments).err, "beatatlas: " + refusal + "\n");
}

TEST(Program, TellsHowToNameAFileThatLooksLikeOptions) {
    const test::TemporaryFolder folder;
    test::writeFile(folder.file("-song"), "");
    test::writeFile(folder.file("song"), "");
    ToolRun run;
    run.folder = folder.path();
    run.arguments = {"draw", "-song"};
    EXPECT_THAT(run.run().err, HasSubstr("; a file -song is written ./-song, or goes behind --"));
    run.err.clear();
    run.arguments = {"song"};
    EXPECT_THAT(run.run().err, HasSubstr("no command song; did you mean analyze song?"));
}

TEST(Program, HelpsByACommandToo) {
    EXPECT_EQ(runTool({"help"}).out, runTool({"--help"}).out);
    for (const std::string command : {"analyze", "draw", "pitch", "key", "cut", "help"}) {
        const ToolRun run = runTool({"help", command});
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_EQ(run.out, runTool({command, "--help"}).out);
        EXPECT_THAT(runTool({"help"}).out, HasSubstr("\n  " + command + " "));
    }
}

TEST(Program, PrintsItsVersionBehindACommandToo) {
    for (const char* command : {"analyze", "draw", "help"}) {
        const ToolRun run = runTool({command, "--version"});
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_EQ(run.out, runTool({"--version"}).out);
    }
}

/** The status of a command that is asked to stop before it has looked at anything. */
int statusOfStopped(const char* command, const std::string& track, const std::string& results) {
    const pid_t process = fork();
    if (process == 0) {
        close(STDERR_FILENO);
        base::Interrupt::install();
        raise(SIGINT);
        ResultStream stream(open(results.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600));
        const std::array<const char*, 4> words = {"beatatlas", command, "--json", track.c_str()};
        _exit(Program(stream).run(static_cast<int>(words.size()), words.data()));
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WEXITSTATUS(status);
}

TEST(Program, CompletesItsDocumentHoweverEarlyItIsStopped) {
    const test::TemporaryFolder folder;
    const std::string track = folder.file("a.wav");
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::clicks(44100, 2, 1.0, {0.5}));
    const std::string results = folder.file("out.json");
    for (const char* command : {"analyze", "key", "pitch"}) {
        EXPECT_EQ(statusOfStopped(command, track, results), 130);
        const auto document = nlohmann::json::parse(test::readFile(results), nullptr, false);
        ASSERT_FALSE(document.is_discarded()) << test::readFile(results);
        EXPECT_EQ(document["tracks"].size(), 0U) << test::readFile(results);
    }
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
