// SPDX-License-Identifier: MIT
#include <chrono>
#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "scan/ScanFixture.h"
#include "support/RunningTool.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::runTool;
using test::ToolRun;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using ScanCommandTest = test::ScanFixture;

constexpr const char* kPaths = "SELECT path FROM tracks ORDER BY path";

/** Bytes, for tests of other ends than a decoder's. */
constexpr const char* kText = "Notes on this album.";

TEST_F(ScanCommandTest, KeepsWhatAnalyzeFinds) {
    const std::string track = addTrack("a.wav", 20.0);
    ASSERT_EQ(scan().exitStatus, 0);
    const json found = json::parse(runTool({"analyze", "--json", track}).out)["tracks"][0];
    EXPECT_EQ(stored_.count("SELECT frames FROM tracks"), found["frames"]);
    EXPECT_EQ(stored_.value("SELECT rate FROM tracks"), "44100");
    EXPECT_EQ(stored_.count("SELECT size FROM tracks"), static_cast<long>(fs::file_size(track)));
    EXPECT_EQ(stored_.integrity(), "ok");
}

TEST_F(ScanCommandTest, SaysNothingButWhatBecameOfTheFiles) {
    addTrack("a.wav");
    addTrack("b/c.wav", 2.0);
    const ToolRun run = scan();
    EXPECT_EQ(run.err, told("2 tracks analysed (0.0 hours of music)"));
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(scan({"--quiet"}).err, "");
}

TEST_F(ScanCommandTest, LeavesUnchangedFilesAlone) {
    addTrack("a.wav");
    const std::string changed = addTrack("b.wav");
    scan();
    EXPECT_EQ(scan().err, told("0 tracks analysed, 2 known"));
    addTrack("b.wav", 3.0);
    EXPECT_THAT(scan().err, HasSubstr("1 track analysed (0.0 hours of music), 1 known"));
    EXPECT_EQ(stored_.value("SELECT seconds FROM tracks WHERE CAST(path AS TEXT) LIKE '%b.wav'"),
              "3.0");
    EXPECT_THAT(scan({"--rescan"}).err, HasSubstr("2 tracks analysed"));
}

TEST_F(ScanCommandTest, AnalysesAnewForOtherOptionsAndKeepsBoth) {
    addTrack("a.wav");
    scan();
    EXPECT_THAT(scan({"--tempo", "constant"}).err, HasSubstr("1 track analysed"));
    EXPECT_EQ(stored_.count("SELECT count(*) FROM results"), 2);
    EXPECT_EQ(scan({"--tempo", "constant"}).err, told("0 tracks analysed, 1 known"));
}

TEST_F(ScanCommandTest, CountsFilesWithoutAudioApart) {
    addTrack("a.wav");
    test::writeFile(music_.file("cover.jpg"), "\xFF\xD8\xFF" + std::string(1000, 'x'));
    test::writeFile(music_.file("notes.txt"), kText);
    const ToolRun run = scan();
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.err, told("1 track analysed (0.0 hours of music), 2 without audio"));
    EXPECT_EQ(scan().err, told("0 tracks analysed, 3 known"));
}

TEST_F(ScanCommandTest, TellsOfMusicFilesThatCannotBeRead) {
    const std::string whole = addTrack("a.wav");
    test::copyShortened(whole, music_.file("b.wav"), 50000);
    test::writeFile(music_.file("c.mp3"), kText);
    const ToolRun run = scan();
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr(told(music_.file("b.wav") +
                                        ": is cut off: it ends before the track does (--partial "
                                        "takes what is there)")));
    EXPECT_THAT(run.err,
                HasSubstr(told(music_.file("c.mp3") + ": is not an audio file of a known kind")));
    EXPECT_THAT(run.err, EndsWith(told("1 track analysed (0.0 hours of music), 2 failed")));
    const ToolRun again = scan();
    EXPECT_EQ(again.exitStatus, 0);
    EXPECT_EQ(again.err, told("0 tracks analysed, 3 known (2 of them failed before)"));
    EXPECT_THAT(scan({"--retry-failed", "--partial"}).err,
                EndsWith(told("1 track analysed (0.0 hours of music), 1 known, 1 failed")));
}

TEST_F(ScanCommandTest, KnowsAMovedTrackByItsSound) {
    const std::string track = addTrack("a.wav", 5.0);
    scan();
    const std::string made = stored_.value("SELECT made_at || hex(audio_hash) FROM results JOIN "
                                           "tracks ON tracks.id = track_id");
    fs::rename(track, music_.file("renamed.wav"));
    EXPECT_EQ(scan().err, told("0 tracks analysed, 1 moved"));
    EXPECT_THAT(stored_.column(kPaths), ElementsAre(music_.file("renamed.wav")));
    EXPECT_EQ(stored_.value("SELECT made_at || hex(audio_hash) FROM results JOIN tracks ON "
                            "tracks.id = track_id"),
              made);
}

TEST_F(ScanCommandTest, TakesACopyForATrackOfItsOwn) {
    const std::string track = addTrack("a.wav");
    scan();
    fs::copy_file(track, music_.file("b.wav"));
    EXPECT_THAT(scan().err, HasSubstr("1 track analysed"));
    EXPECT_EQ(stored_.count("SELECT count(*) FROM tracks"), 2);
    EXPECT_EQ(stored_.count("SELECT count(DISTINCT audio_hash) FROM tracks"), 1);
}

TEST_F(ScanCommandTest, MarksTracksThatAreGoneAndDeletesThemWhenTold) {
    const std::string track = addTrack("a.wav");
    addTrack("b.wav", 2.0);
    scan();
    fs::remove(track);
    EXPECT_EQ(scan().err, told("0 tracks analysed, 1 known, 1 gone"));
    EXPECT_EQ(stored_.count("SELECT count(*) FROM tracks WHERE is_gone"), 1);
    EXPECT_EQ(scan({"--prune"}).err,
              told("0 tracks analysed, 1 known, 1 gone, 1 deleted from the catalogue"));
    EXPECT_THAT(stored_.column(kPaths), ElementsAre(music_.file("b.wav")));
}

TEST_F(ScanCommandTest, DeletesNothingForADiskThatIsNotMounted) {
    const std::string track = addTrack("disk/a.wav");
    const std::string disk = music_.file("disk");
    runTool(arguments({disk}));
    fs::remove(track);
    const ToolRun run = runTool(arguments({"--prune", disk}));
    EXPECT_EQ(run.err,
              told("gone, but kept, since nothing at all is left where they were, as where "
                   "a disk is not mounted: 1 track") +
                  told("0 tracks analysed, 1 gone"));
    EXPECT_EQ(stored_.count("SELECT count(*) FROM tracks"), 1);
    fs::remove(disk);
    EXPECT_THAT(runTool(arguments({"--prune", disk})).err, HasSubstr("0 tracks analysed, 1 gone"));
    EXPECT_EQ(stored_.count("SELECT count(*) FROM tracks"), 1);
}

TEST_F(ScanCommandTest, TakesFilesPlaylistsAndNamesOnStandardInput) {
    const std::string a = addTrack("a.wav");
    const std::string b = addTrack("sub/b.wav", 2.0);
    const std::string c = addTrack("c\nd.wav", 3.0);
    const std::string list = place_.file("l.m3u");
    test::writeFile(list, b + "\nhttp://radio.example/x\n");
    test::RunningTool tool(arguments({a, list, "-"}), c + std::string(1, '\0'));
    EXPECT_EQ(tool.wait(), 0);
    EXPECT_THAT(tool.err(), HasSubstr(list + ": note: names the address http://radio.example/x, "
                                             "which is left out"));
    EXPECT_THAT(stored_.column(kPaths), UnorderedElementsAre(a, b, c));
}

TEST_F(ScanCommandTest, TellsWhatIsNotThere) {
    addTrack("a.wav");
    const std::string list = music_.file("l.m3u");
    test::writeFile(list, "a.wav\ngone.wav\n");
    const ToolRun run = runTool(arguments({list, music_.file("none")}));
    EXPECT_EQ(run.exitStatus, 1);
    for (const char* name : {"gone.wav", "none"}) {
        EXPECT_THAT(run.err, HasSubstr(told(music_.file(name) +
                                            ": cannot be opened: No such file or directory")));
    }
    EXPECT_THAT(run.err, EndsWith(told("1 track analysed (0.0 hours of music)")));
}

TEST_F(ScanCommandTest, KeepsNamesOfAnyBytes) {
    const std::vector<std::string> paths = {addTrack("\xFF\xFE.wav", 1.0),
                                            addTrack("two  words\n.wav", 2.0),
                                            addTrack("[a,b].wav", 3.0)};
    EXPECT_EQ(scan().exitStatus, 0);
    EXPECT_THAT(stored_.column(kPaths), testing::UnorderedElementsAreArray(paths));
    const ToolRun run = runTool(arguments({"--rescan", "--", paths[0], paths[1], paths[2]}));
    EXPECT_EQ(run.err, told("3 tracks analysed (0.0 hours of music)"));
}

TEST_F(ScanCommandTest, TakesNamesBehindDashesForNamesAlsoAfterOthers) {
    const std::string a = addTrack("a.wav");
    addTrack("-b.wav", 2.0);
    addTrack("--jobs", 3.0);
    ToolRun run;
    run.arguments = arguments({a, "--", "-b.wav", "--jobs"});
    run.folder = music_.path();
    EXPECT_THAT(run.run().err, HasSubstr("3 tracks analysed"));
}

TEST_F(ScanCommandTest, TakesTextsAndProgramsOfAnyNameForNoMusic) {
    // By chance these begin as FFmpeg expects it of some format.
    const std::string script = "#!/bin/sh\n" + std::string(390, 'e');
    for (const char* name : {"run.sh", "notes", "COPYING.txt"})
        test::writeFile(music_.file(name), script + name);
    std::string binary = "\x7F"
                         "ELF";
    for (int i = 0; i < 40000; ++i) binary += static_cast<char>((i * 7919 + i / 13) & 0xFF);
    test::writeFile(music_.file("program"), binary);
    const ToolRun run = scan();
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.err, told("0 tracks analysed, 4 without audio"));
}

TEST_F(ScanCommandTest, TakesATouchedFileForTheSameTrack) {
    const std::string track = addTrack("a.wav");
    scan();
    fs::last_write_time(track, fs::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(scan().err, told("0 tracks analysed, 1 with other tags alone"));
    EXPECT_EQ(scan().err, told("0 tracks analysed, 1 known"));
}

TEST_F(ScanCommandTest, WarnsOfCorrectionsThatStayWithAnotherSound) {
    const std::string track = addTrack("a.wav", 8.0);
    scan();
    runTool({"correct", "--catalogue", catalogue_, "--key", "8A", track});
    test::writeAudioFile(track, {"wav", "pcm_s16le"}, test::tone(44100, 2, 9.0, 440.0, 0.5));
    EXPECT_THAT(scan().err,
                HasSubstr(told(track + ": warning: holds another sound than the one that was "
                                       "corrected; the corrections are kept for that one")));
    EXPECT_EQ(stored_.count("SELECT is_corrected FROM tracks"), 0);
    addTrack("b.wav", 8.0);
    scan();
    EXPECT_EQ(stored_.value("SELECT key FROM tracks WHERE CAST(path AS TEXT) LIKE '%b.wav'"), "12");
}

TEST_F(ScanCommandTest, MarksAFileThatWasNamedAndIsNoMore) {
    const std::string track = addTrack("a.wav");
    scan();
    fs::remove(track);
    EXPECT_THAT(runTool(arguments({track})).err, EndsWith(told("0 tracks analysed, 1 gone")));
    EXPECT_EQ(stored_.count("SELECT is_gone FROM tracks"), 1);
}

TEST_F(ScanCommandTest, MakesNoCatalogueForNamesThatAreNotThere) {
    const ToolRun run = runTool(arguments({music_.file("none")}));
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, told(music_.file("none") + ": cannot be opened: No such file or directory"));
    EXPECT_THAT(place_.names(), IsEmpty());
}

TEST_F(ScanCommandTest, LeavesPipesOutAndSaysSo) {
    addTrack("a.wav");
    const std::string pipe = music_.file("pipe");
    const std::string list = music_.file("list.m3u8");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600) + mkfifo(list.c_str(), 0600), 0);
    EXPECT_EQ(scan().err,
              told("1 track analysed (0.0 hours of music), 2 pipes or devices left out"));
    EXPECT_THAT(scan({"-v"}).err, HasSubstr(pipe + ": note: is a pipe or a device, and left out"));
    const ToolRun named = runTool(arguments({list}));
    EXPECT_EQ(named.exitStatus, 1);
    EXPECT_THAT(named.err, HasSubstr(list + ": is a pipe or a device"));
}

TEST_F(ScanCommandTest, WalksAFolderThatIsNamedLikeAPlaylist) {
    addTrack("old.m3u8/a.wav");
    EXPECT_THAT(runTool(arguments({music_.file("old.m3u8")})).err, HasSubstr("1 track analysed"));
}

TEST_F(ScanCommandTest, RefusesMoreWorkersThanTheSystemHasFilesFor) {
    addTrack("a.wav");
    const struct rlimit few = {100, 100};
    const pid_t child = fork();
    if (child == 0) {
        setrlimit(RLIMIT_NOFILE, &few);
        const ToolRun run =
            runTool({"scan", "--catalogue", catalogue_, "--jobs", "50", music_.path()});
        _exit(run.exitStatus == 2 && run.err.find("ulimit -n") != std::string::npos ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(ScanCommandTest, LeavesTheCatalogueItselfAlone) {
    addTrack("a.wav");
    catalogue_ = music_.file("c.sqlite");
    scan();
    EXPECT_EQ(scan().err, told("0 tracks analysed, 1 known"));
}

TEST_F(ScanCommandTest, DividesTheFilesIntoShares) {
    for (int i = 0; i < 8; ++i) addTrack(std::to_string(i) + ".wav", 1.0 + 0.1 * i);
    scan({"--shard", "1/2"});
    const auto first = stored_.column(kPaths);
    EXPECT_EQ(scan({"--shard", "1/2"}).err,
              told("0 tracks analysed, " + std::to_string(first.size()) + " known"));
    scan({"--shard", "2/2"});
    EXPECT_EQ(stored_.count("SELECT count(*) FROM tracks"), 8);
    EXPECT_EQ(stored_.count("SELECT count(*) FROM tracks WHERE is_gone"), 0);
}

TEST_F(ScanCommandTest, TellsProgramsHowFarItIs) {
    addTrack("a.wav");
    test::writeFile(music_.file("b.mp3"), kText);
    const ToolRun run = scan({"--progress", "json", "--quiet"});
    std::vector<json> events;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) events.push_back(json::parse(line));
    ASSERT_GE(events.size(), 3U);
    EXPECT_EQ(
        events.front(),
        (json{{"event", "begin"}, {"found", 2}, {"known", 0}, {"knownFailures", 0}, {"toDo", 2}}));
    const json& end = events.back();
    EXPECT_EQ(end["event"], "end");
    EXPECT_EQ(end["complete"], true);
    EXPECT_EQ(end["analysed"], 1);
    EXPECT_EQ(end["failed"], 1);
    EXPECT_EQ(end["left"], 0);
    EXPECT_THAT(run.out, HasSubstr("\"kind\":\"damaged\""));
}

TEST_F(ScanCommandTest, ShowsOneLineOnATerminalAndWipesIt) {
    addTrack("a.wav", 60.0);
    ToolRun run;
    run.arguments = arguments({music_.path()});
    run.hasTerminal = true;
    run.run();
    EXPECT_THAT(run.err, HasSubstr(" of 1  "));
    EXPECT_THAT(run.err, HasSubstr("\r\x1B[Kbeatatlas: 1 track analysed"));
}

TEST_F(ScanCommandTest, RefusesWhatItCannotDo) {
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{"--shard", "0/2"},
                                               {"--shard", "3/2"},
                                               {"--shard", "-1/2"},
                                               {"--shard", "1"},
                                               {"--jobs", "0"},
                                               {"--memory-limit", "much"},
                                               {"--memory-limit", "1"},
                                               {"--memory-limit", "15M"},
                                               {"--time-limit", "0"},
                                               {"--prune-corrected"},
                                               {"--progress", "often"},
                                               {"--section", "8"}}) {
        EXPECT_EQ(scan(wrong).exitStatus, 2) << wrong.front();
    }
    EXPECT_EQ(runTool(arguments()).exitStatus, 2);
    EXPECT_THAT(place_.names(), IsEmpty());
}

TEST_F(ScanCommandTest, TakesAnEmptyNameForNoFolder) {
    addTrack("a.wav");
    for (const bool hasCatalogue : {false, true}) {
        EXPECT_EQ(fs::exists(catalogue_), hasCatalogue);
        const ToolRun run = runTool({"scan", "--catalogue", catalogue_, ""});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.err, HasSubstr("beatatlas: '': is an empty name, which no file has\n"));
        runTool({"scan", "--catalogue", catalogue_, music_.path()});
    }
}

TEST_F(ScanCommandTest, KeepsTheUsersCatalogueInTheFolderForData) {
    addTrack("a.wav");
    setenv("XDG_DATA_HOME", place_.path().c_str(), 1);
    const ToolRun run = runTool({"scan", music_.path()});
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_TRUE(fs::exists(place_.file("beatatlas/catalogue.sqlite")));
}

TEST_F(ScanCommandTest, HidesItsWorkersFromHelp) {
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"--help"}, {"help", "scan-worker"}, {"scan-work"}}) {
        const ToolRun run = runTool(words);
        EXPECT_THAT(run.out, Not(HasSubstr("scan-worker")));
        EXPECT_THAT(run.err, Not(HasSubstr("mean scan-worker")));
    }
}

}  // namespace
}  // namespace app
