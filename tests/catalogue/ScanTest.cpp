// SPDX-License-Identifier: MIT
#include "catalogue/Scan.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>

#include "catalogue/CatalogueError.h"
#include "catalogue/StoredTracks.h"
#include "catalogue/TrackStore.h"
#include "catalogue/blobCodecs.h"
#include "catalogue/correction/Corrections.h"
#include "support/TemporaryFolder.h"

namespace catalogue {
namespace {

using test::analysedTrack;
using test::soundOf;
using test::valueOf;
using testing::ElementsAre;

const std::string kParameters = parametersText(test::everything());

class CatalogueScan : public testing::Test {
protected:
    static constexpr FileState kState = {1000, 5};
    const base::TrackFormat kFormat = {
        "flac", "flac", 2, 44100, 44100, false, {"Somebody", "New Title"}};

    /** A file that exists. */
    std::string fileNamed(const std::string& name) {
        const std::string path = music_.file(name);
        test::writeFile(path, "sound");
        return path;
    }

    void put(const std::string& path, int sound) {
        test::store(catalogue_, {analysedTrack(path, sound)});
    }

    std::int64_t idOf(const std::string& path) {
        return TrackStore(catalogue_).find(path).value_or(-1);
    }

    Scan::Counts countsOf(const Scan::Plan& plan, const std::vector<std::string>& paths,
                          const FileState& state = kState) {
        Scan scan(catalogue_, plan);
        for (const std::string& path : paths) scan.found(path, state, 1.0);
        return scan.settle();
    }

    test::TemporaryFolder folder_;
    test::TemporaryFolder music_;
    Catalogue catalogue_{folder_.file("c.sqlite"), Catalogue::Access::create};
};

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

TEST_F(CatalogueScan, KeepsCorrectionsOfASoundThatAnotherTookThePlaceOf) {
    const std::string place = fileNamed("place");
    put(place, 1);
    Corrections(catalogue_).add(idOf(place), {EditKind::half});
    put(music_.file("from"), 2);
    // The file of the first now holds the sound of the second.
    {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.settle();
        EXPECT_TRUE(scan.adopt(place, {7, 7}, soundOf(2), kFormat).leavesCorrections);
    }
    EXPECT_THAT(Corrections(catalogue_).of(idOf(place)), testing::IsEmpty());
    put(fileNamed("back"), 1);
    EXPECT_THAT(Corrections(catalogue_).of(idOf(music_.file("back"))),
                ElementsAre(Edit{EditKind::half}));
}

/** Another song, or the same encoded anew: a waveform that rises and falls. */
Analysed waved(const std::string& path, int sound, int period, float loudness,
               const FileState& state) {
    std::vector<beatatlas::track::WavePoint> wave(1200);
    for (std::size_t i = 0; i < wave.size(); ++i)
        wave[i].level = loudness * static_cast<float>(i % static_cast<std::size_t>(period));
    Analysed analysed = analysedTrack(path, sound, state);
    analysed.result.zoomWave = encodeWave(wave);
    return analysed;
}

class CorrectedScan : public CatalogueScan {
protected:
    CorrectedScan() {
        test::store(catalogue_, {waved("/a", 1, 20, 1.0F, kState)});
        Corrections(catalogue_).add(idOf("/a"), {EditKind::twice});
    }

    /** Whether that leaves corrections behind. */
    bool puts(const Analysed& analysed) {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.settle();
        return scan.put(analysed);
    }

    std::string shown() {
        return valueOf(catalogue_, "SELECT bpm || ' ' || is_corrected FROM tracks WHERE path = "
                                   "CAST('/a' AS BLOB)");
    }
};

TEST_F(CorrectedScan, GivesAnotherSongOfTheSameNameNoneOfThem) {
    EXPECT_TRUE(puts(waved("/a", 2, 33, 1.0F, {2000, 6})));
    EXPECT_EQ(shown(), "120.0 0");
    EXPECT_FALSE(puts(waved("/a", 1, 20, 1.0F, {1000, 7})));
    EXPECT_EQ(shown(), "240.0 1");
}

TEST_F(CorrectedScan, CarriesThemOverToWhatAnotherDecoderMakesOfTheSameFile) {
    EXPECT_FALSE(puts(waved("/a", 2, 33, 1.0F, kState)));
    EXPECT_EQ(shown(), "240.0 1");
}

TEST_F(CorrectedScan, CarriesThemOverToTheSameRecordingEncodedAnew) {
    EXPECT_FALSE(puts(waved("/a", 2, 20, 0.5F, {500, 6})));
    EXPECT_EQ(shown(), "240.0 1");
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM corrections"), "1");
}

TEST_F(CorrectedScan, CarriesNoneOverToARecordingOfAnotherLength) {
    Analysed longer = waved("/a", 2, 20, 1.0F, {2000, 6});
    longer.track.seconds += 0.2;
    EXPECT_TRUE(puts(longer));
    EXPECT_EQ(shown(), "120.0 0");
}

TEST_F(CorrectedScan, LeavesACopyItsOwnWhenItCarriesThemOver) {
    put("/copy", 1);
    puts(waved("/a", 2, 20, 0.5F, {500, 6}));
    EXPECT_EQ(valueOf(catalogue_, "SELECT group_concat(bpm) FROM tracks"), "240.0,240.0");
}

TEST_F(CorrectedScan, KeepsThemWhereTwoFilesSwapTheirNames) {
    test::store(catalogue_, {waved("/b", 2, 33, 1.0F, kState)});
    puts(waved("/a", 2, 33, 1.0F, {1000, 8}));
    puts(waved("/b", 1, 20, 1.0F, {1000, 8}));
    EXPECT_EQ(valueOf(catalogue_, "SELECT group_concat(CAST(path AS TEXT) || bpm) FROM tracks"),
              "/a120.0,/b240.0");
}

TEST_F(CatalogueScan, ShowsTheResultThatWasAskedForLast) {
    Analysed other = analysedTrack("/a", 1);
    other.result.parameters = parametersText({});
    other.result.bpm = 99.0;
    put("/a", 1);
    test::store(catalogue_, {other});
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "99.0");
    EXPECT_EQ(countsOf({kParameters, false, false}, {"/a"}).known, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "120.0");
    EXPECT_EQ(countsOf({parametersText({}), false, false}, {"/a"}).known, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "99.0");
    EXPECT_EQ(TrackStore(catalogue_).read(idOf("/a")).value().analysed.result.bpm, 99.0);
}

TEST_F(CatalogueScan, HidesNoTempoBehindAResultWithoutOne) {
    put("/a", 1);
    beatatlas::track::Options withoutTempo = test::everything();
    withoutTempo.tempo = beatatlas::track::TempoMode::off;
    Analysed other = analysedTrack("/a", 1);
    other.result.parameters = parametersText(withoutTempo);
    other.result.bpm.reset();
    test::store(catalogue_, {other});
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "120.0");
    EXPECT_EQ(countsOf({parametersText(withoutTempo), false, false}, {"/a"}).known, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT bpm FROM tracks"), "120.0");
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

TEST_F(CatalogueScan, MarksWhatIsNoMoreBelowTheRootsAndNothingElse) {
    const std::string here = fileNamed("here");
    put(here, 1);
    put(music_.file("gone"), 2);
    put(music_.path() + "-other/elsewhere", 3);
    put("/nowhere/gone", 4);
    Scan scan(catalogue_, {kParameters, false, false});
    scan.settle();
    const Scan::Ending ending = scan.finish({{music_.path()}}, Scan::Pruning::none);
    EXPECT_EQ(ending.gone, 1);
    EXPECT_EQ(ending.pruned, 0);
    EXPECT_EQ(valueOf(catalogue_,
                      "SELECT group_concat(CAST(path AS TEXT)) FROM tracks WHERE is_gone = 1"),
              music_.file("gone"));
}

TEST_F(CatalogueScan, TakesBackThatAFileIsGoneWhenItIsFoundAgain) {
    put(music_.file("a"), 1);
    {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.settle();
        EXPECT_EQ(scan.finish({{music_.path() + "/"}}, Scan::Pruning::none).gone, 1);
    }
    EXPECT_EQ(countsOf({kParameters, false, false}, {music_.file("a")}).known, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT is_gone FROM tracks"), "0");
}

TEST_F(CatalogueScan, PrunesCorrectedTracksOnlyWhenToldTo) {
    fileNamed("here");
    put(music_.file("plain"), 1);
    put(music_.file("corrected"), 2);
    Corrections(catalogue_).add(idOf(music_.file("corrected")), {EditKind::key, 3.0});
    {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.settle();
        const Scan::Ending ending = scan.finish({{music_.path()}}, Scan::Pruning::uncorrected);
        EXPECT_EQ(ending.gone, 2);
        EXPECT_EQ(ending.pruned, 1);
        EXPECT_EQ(ending.keptCorrected, 1);
    }
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM results"), "1");
    Scan scan(catalogue_, {kParameters, false, false});
    scan.settle();
    EXPECT_EQ(scan.finish({{music_.path()}}, Scan::Pruning::all).pruned, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM tracks"), "0");
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM corrections"), "0");
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM track_search WHERE search MATCH 'exa'"),
              "0");
}

TEST_F(CatalogueScan, DeletesNothingWhereNothingIsLeft) {
    const std::string disk = music_.file("disk");
    std::filesystem::create_directory(disk);
    fileNamed("here");
    put(disk + "/album/a", 1);
    put(disk + "/album/b", 2);
    put(music_.file("removed"), 3);
    const auto sweep = [&](const std::vector<Scan::Root>& roots) {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.settle();
        return scan.finish(roots, Scan::Pruning::all);
    };
    const Scan::Ending absent = sweep({{disk, false}, {"/nowhere", false}});
    EXPECT_EQ(absent.gone, 2);
    EXPECT_EQ(absent.keptAbsent, 2);
    // The root around it is whole; the folder in it is empty all the same.
    const Scan::Ending around = sweep({{music_.path()}});
    EXPECT_EQ(around.gone, 3);
    EXPECT_EQ(around.pruned, 1);
    EXPECT_EQ(around.keptAbsent, 2);
    test::writeFile(disk + "/other", "sound");
    EXPECT_EQ(sweep({{music_.path()}}).pruned, 2);
}

TEST_F(CatalogueScan, CountsWhatIsGoneOnceBelowRootsThatOverlap) {
    put(music_.file("sub/gone"), 1);
    Scan scan(catalogue_, {kParameters, false, false});
    scan.settle();
    const std::string sub = music_.file("sub");
    EXPECT_EQ(
        scan.finish({{sub}, {music_.path()}, {sub}, {sub + "/gone", false}}, Scan::Pruning::none)
            .gone,
        1);
}

TEST_F(CatalogueScan, PrunesCorrectionsOnlyWithTheLastTrackOfTheirSound) {
    const std::string here = fileNamed("here");
    put(here, 1);
    put(music_.file("copy"), 1);
    Corrections(catalogue_).add(idOf(here), {EditKind::twice});
    Scan scan(catalogue_, {kParameters, false, false});
    scan.settle();
    EXPECT_EQ(scan.finish({{music_.path()}}, Scan::Pruning::all).pruned, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM corrections"), "1");
}

TEST_F(CatalogueScan, ForgetsFailuresOfFilesThatAreNoMore) {
    const std::string here = fileNamed("here");
    Scan scan(catalogue_, {kParameters, false, false});
    scan.settle();
    scan.putFailure(here, kState, {FailureKind::notAudio, "is no audio"});
    scan.putFailure(music_.file("gone"), kState, {FailureKind::notAudio, "is no audio"});
    scan.finish({{music_.path()}}, Scan::Pruning::none);
    EXPECT_EQ(valueOf(catalogue_, "SELECT CAST(path AS TEXT) FROM failures"), here);
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

TEST_F(CatalogueScan, EndsManyTracksAFewHundredAtATime) {
    fileNamed("here");
    std::vector<Analysed> tracks;
    for (int i = 0; i < 450; ++i)
        tracks.push_back(analysedTrack(music_.file(std::to_string(1000 + i)), i % 256));
    test::store(catalogue_, tracks);
    catalogue_.database().exec("CREATE TRIGGER fails BEFORE DELETE ON tracks WHEN "
                               "old.id = 450 BEGIN SELECT RAISE(ABORT, 'no more'); END");
    Scan scan(catalogue_, {kParameters, false, false});
    scan.settle();
    EXPECT_THROW(scan.finish({{music_.path()}}, Scan::Pruning::all), CatalogueError);
    const Catalogue reader(folder_.file("c.sqlite"), Catalogue::Access::read);
    EXPECT_LT(std::stoi(valueOf(reader, "SELECT count(*) FROM tracks")), 450);
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
