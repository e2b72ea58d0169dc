// SPDX-License-Identifier: MIT
#include "catalogue/Scan.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>

#include "catalogue/CatalogueError.h"
#include "catalogue/CatalogueScan.h"
#include "catalogue/correction/Corrections.h"

namespace catalogue {
namespace {

using test::analysedTrack;
using test::soundOf;
using test::valueOf;
using testing::ElementsAre;

TEST_F(CatalogueScan, NamesEveryFileOnceTheHeaviestFirst) {
    Scan scan(catalogue_, {kParameters, false, false});
    scan.found("/short", kState, 1.0);
    scan.found("/long", kState, 90.0);
    scan.found("/b", kState, 10.0);
    scan.found("/a", kState, 10.0);
    scan.found("/long", kState, 90.0);
    const Scan::Counts counts = scan.settle();
    EXPECT_EQ(counts.found, 4);
    EXPECT_EQ(counts.toDo, 4);
    EXPECT_EQ(counts.weightToDo, 111.0);
    std::vector<std::string> order;
    while (const auto work = scan.next()) order.push_back(work->path);
    EXPECT_THAT(order, ElementsAre("/long", "/a", "/b", "/short"));
    EXPECT_FALSE(scan.next());
}

TEST_F(CatalogueScan, KnowsAFileByPathSizeTimeAndParameters) {
    put("/a", 1);
    EXPECT_EQ(countsOf({kParameters, false, false}, {"/a", "/b"}).known, 1);
    EXPECT_EQ(countsOf({kParameters, false, true}, {"/a"}).known, 0);
    EXPECT_EQ(countsOf({kParameters, false, false}, {"/a"}, {1001, 5}).known, 0);
    EXPECT_EQ(countsOf({kParameters, false, false}, {"/a"}, {1000, 6}).known, 0);
    EXPECT_EQ(countsOf({"{}", false, false}, {"/a"}).known, 0);
}

TEST_F(CatalogueScan, TriesAFailedFileAgainOnlyWhenAskedOrWhenItHasChanged) {
    {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.found("/bad", kState, 1.0);
        scan.settle();
        scan.putFailure("/bad", kState, {FailureKind::damaged, "is empty"});
        scan.putFailure("/bad", kState, {FailureKind::crashed, "crashed"});
    }
    EXPECT_EQ(valueOf(catalogue_, "SELECT kind || attempts || reason FROM failures"),
              "crashed2crashed");
    EXPECT_EQ(countsOf({kParameters, false, false}, {"/bad"}).toDo, 0);
    EXPECT_EQ(countsOf({kParameters, false, true}, {"/bad"}).toDo, 0);
    EXPECT_EQ(countsOf({kParameters, true, false}, {"/bad"}).toDo, 1);
    EXPECT_EQ(countsOf({kParameters, false, false}, {"/bad"}, {1, 1}).toDo, 1);
    put("/bad", 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM failures"), "0");
}

TEST_F(CatalogueScan, KeepsEarlierResultsOfAFileThatFails) {
    put("/a", 1);
    Scan scan(catalogue_, {kParameters, false, false});
    scan.found("/a", {7, 7}, 1.0);
    scan.settle();
    scan.putFailure("/a", {7, 7}, {FailureKind::damaged, "is empty"});
    scan.commit();
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM results"), "1");
}

TEST_F(CatalogueScan, ReplacesTheResultOfTheSameParametersAndKeepsOthers) {
    put("/a", 1);
    Analysed other = analysedTrack("/a", 1);
    other.result.parameters = parametersText({});
    other.result.bpm = 99.0;
    test::store(catalogue_, {other});
    put("/a", 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM results"), "2");
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM grids"), "2");
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM tracks"), "1");
}

TEST_F(CatalogueScan, DropsResultsOfTheSoundThatAFileHeldBefore) {
    put("/a", 1);
    Analysed other = analysedTrack("/a", 2);
    other.result.parameters = parametersText({});
    test::store(catalogue_, {other});
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM results"), "1");
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM waves"), "1");
}

TEST_F(CatalogueScan, TakesAMovedTrackWithItsResultsAndCorrectionsToItsNewPlace) {
    const std::string from = music_.file("from");
    const std::string to = fileNamed("to");
    put(from, 1);
    const std::int64_t id = idOf(from);
    Corrections(catalogue_).add(id, {EditKind::twice});
    {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.found(to, {1000, 9}, 1.0);
        scan.settle();
        EXPECT_TRUE(scan.next().value().mayBeKnown);
        EXPECT_FALSE(scan.adopt(to, {1000, 9}, soundOf(2), kFormat).isDone);
        const Scan::Adoption adoption = scan.adopt(to, {1000, 9}, soundOf(1), kFormat);
        EXPECT_TRUE(adoption.isDone && adoption.isMoved);
    }
    EXPECT_EQ(valueOf(catalogue_, "SELECT artist || title_order FROM tracks"), "Somebodynew title");
    EXPECT_EQ(idOf(to), id);
    EXPECT_EQ(idOf(from), -1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "240.0");
    EXPECT_EQ(countsOf({kParameters, false, false}, {to}, {1000, 9}).known, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM track_search WHERE search MATCH '\"/to\"'"),
              "1");
}

TEST_F(CatalogueScan, RecognisesAMovedTrackWhenItIsAnalysedToo) {
    put(music_.file("from"), 1);
    const std::int64_t id = idOf(music_.file("from"));
    put(fileNamed("to"), 1);
    EXPECT_EQ(idOf(music_.file("to")), id);
}

TEST_F(CatalogueScan, TakesCopiesOfOneSoundForTwoTracks) {
    put(fileNamed("one"), 1);
    put(fileNamed("two"), 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM tracks"), "2");
}

TEST_F(CatalogueScan, KnowsTheSoundOfAFileWhoseTagsHaveChanged) {
    const std::string path = fileNamed("a");
    put(path, 1);
    Scan scan(catalogue_, {kParameters, false, false});
    scan.found(path, {1200, 99}, 1.0);
    EXPECT_EQ(scan.settle().toDo, 1);
    EXPECT_TRUE(scan.next().value().mayBeKnown);
    const Scan::Adoption adoption = scan.adopt(path, {1200, 99}, soundOf(1), kFormat);
    EXPECT_TRUE(adoption.isDone);
    EXPECT_FALSE(adoption.isMoved);
    EXPECT_EQ(valueOf(catalogue_, "SELECT artist || size FROM tracks"), "Somebody1200");
}

TEST_F(CatalogueScan, HearsAnUnchangedFileOnceForAResultOfOtherParameters) {
    const std::string path = fileNamed("a");
    put(path, 1);
    Scan scan(catalogue_, {parametersText({}), false, false});
    scan.found(path, kState, 1.0);
    EXPECT_EQ(scan.settle().toDo, 1);
    EXPECT_FALSE(scan.next().value().mayBeKnown);
}

TEST_F(CatalogueScan, SaysHowFarItIsInTheSameTransactionAsItsResults) {
    const Catalogue reader(folder_.file("c.sqlite"), Catalogue::Access::read);
    const std::string row = "SELECT planned || ' ' || done || ' ' || failed || ' ' || "
                            "audio_seconds || ' ' || ifnull(ended_at > 0, 'runs') FROM "
                            "scan_progress";
    {
        Scan scan(catalogue_, {kParameters, false, false});
        for (const char* path : {"/a", "/b", "/c", "/d"}) scan.found(path, kState, 1.0);
        scan.settle();
        EXPECT_EQ(valueOf(reader, row), "4 0 0 0.0 runs");
        scan.put(analysedTrack("/a", 1));
        scan.putFailure("/b", kState, {FailureKind::damaged, "is empty"});
        scan.putFailure("/c", kState, {FailureKind::notAudio, "is none"});
        EXPECT_EQ(valueOf(reader, row), "4 0 0 0.0 runs");
        scan.commit();
        EXPECT_EQ(valueOf(reader, row), "4 3 1 8.0 runs");
    }
    EXPECT_EQ(valueOf(reader, row), "4 3 1 8.0 1");
    countsOf({kParameters, false, false}, {"/a"});
    EXPECT_EQ(valueOf(reader, row), "0 0 0 0.0 1");
}

TEST_F(CatalogueScan, TriesWhatFailedByALimitAgainWithAHigherOne) {
    {
        Scan scan(catalogue_, {kParameters, false, false, 2.0e7, 10.0});
        scan.settle();
        scan.putFailure("/large", kState, {FailureKind::memoryLimit, "is large", 2.0e7});
        scan.putFailure("/long", kState, {FailureKind::timeLimit, "is long", 10.0});
    }
    const auto toDo = [&](double bytes, double seconds) {
        return countsOf({kParameters, false, false, bytes, seconds}, {"/large", "/long"}).toDo;
    };
    EXPECT_EQ(toDo(2.0e7, 10.0), 0);
    EXPECT_EQ(toDo(2.1e7, 10.0), 1);
    EXPECT_EQ(toDo(2.1e7, 11.0), 2);
    EXPECT_EQ(toDo(1.0e7, 1.0), 0);
}

TEST_F(CatalogueScan, CountsKnownFailuresOfMusic) {
    put("/a", 1);
    {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.settle();
        scan.putFailure("/bad", kState, {FailureKind::damaged, "is empty"});
        scan.putFailure("/text", kState, {FailureKind::notAudio, "is none"});
    }
    const Scan::Counts counts = countsOf({kParameters, false, false}, {"/a", "/bad", "/text"});
    EXPECT_EQ(counts.known, 3);
    EXPECT_EQ(counts.knownFailures, 1);
    EXPECT_EQ(countsOf({kParameters, true, false}, {"/bad"}).knownFailures, 0);
}

TEST_F(CatalogueScan, LocksOutAnotherScanUntilItEnds) {
    {
        const Scan first(catalogue_, {kParameters, false, false});
        Catalogue again(folder_.file("c.sqlite"), Catalogue::Access::write);
        EXPECT_THROW(Scan(again, {kParameters, false, false}), ScanRunning);
    }
    EXPECT_NO_THROW(Scan(catalogue_, {kParameters, false, false}));
}

TEST_F(CatalogueScan, LocksOutAnotherScanByALinkToTheCatalogue) {
    std::filesystem::create_symlink(folder_.file("c.sqlite"), music_.file("link"));
    const Scan first(catalogue_, {kParameters, false, false});
    Catalogue linked(music_.file("link"), Catalogue::Access::write);
    EXPECT_THROW(Scan(linked, {kParameters, false, false}), ScanRunning);
}

TEST_F(CatalogueScan, LeavesATrackAsItWasWhereItsNewResultCannotBeWritten) {
    put("/a", 1);
    catalogue_.database().exec("CREATE TRIGGER fails BEFORE INSERT ON waves "
                               "BEGIN SELECT RAISE(ABORT, 'no room'); END");
    EXPECT_THROW(put("/a", 2), CatalogueError);
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM results"), "1");
    EXPECT_EQ(TrackStore(catalogue_).read(idOf("/a")).value().analysed.track.hash, soundOf(1));
}

// While a scan looks around nobody waits for it.
TEST_F(CatalogueScan, LetsOthersWriteUntilItHasSomethingToWrite) {
    put("/a", 1);
    Scan scan(catalogue_, {kParameters, false, false});
    scan.found("/b", kState, 1.0);
    Catalogue other(folder_.file("c.sqlite"), Catalogue::Access::write);
    EXPECT_NO_THROW(Corrections(other).add(1, {EditKind::twice}));
    scan.settle();
    EXPECT_NO_THROW(Corrections(other).undo(1));
}

TEST_F(CatalogueScan, CommitsManyRecordsBeforeItEnds) {
    Scan scan(catalogue_, {kParameters, false, false});
    scan.settle();
    for (int i = 0; i < 250; ++i)
        scan.putFailure("/" + std::to_string(i), kState, {FailureKind::notAudio, ""});
    const Catalogue reader(folder_.file("c.sqlite"), Catalogue::Access::read);
    // No more than 199 wait for the disk; fewer where the machine stood still meanwhile.
    EXPECT_GE(std::stoi(valueOf(reader, "SELECT count(*) FROM failures")), 51);
}

TEST_F(CatalogueScan, KeepsNamesOfAnyBytes) {
    const std::string path = "/a\xFF\n'; DROP TABLE tracks; --\x01";
    put(path, 1);
    EXPECT_EQ(TrackStore(catalogue_).read(idOf(path)).value().analysed.track.path, path);
    EXPECT_EQ(countsOf({kParameters, false, false}, {path}).known, 1);
}

}  // namespace
}  // namespace catalogue
