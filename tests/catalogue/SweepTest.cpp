// SPDX-License-Identifier: MIT
#include "catalogue/Sweep.h"

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
using test::valueOf;

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

// A blank and a hyphen come before '/', letters behind it.
TEST_F(CatalogueScan, KnowsRootsApartWhoseNamesBeginAlike) {
    fileNamed("here");
    const std::vector<std::string> folders = {"a", "a b", "a-", "ab", "a/sub"};
    for (std::size_t i = 0; i < folders.size(); ++i)
        put(music_.file(folders[i] + "/gone"), static_cast<int>(i) + 1);
    const auto sweep = [&](const std::vector<Scan::Root>& roots) {
        Scan scan(catalogue_, {kParameters, false, false});
        scan.settle();
        return scan.finish(roots, Scan::Pruning::all);
    };
    const std::string a = music_.file("a");
    const Scan::Ending ending = sweep({{music_.file("a b")}, {a + "/", false}, {a, false}, {a}});
    EXPECT_EQ(ending.gone, 3);
    EXPECT_EQ(ending.keptAbsent, 2);
    EXPECT_EQ(ending.pruned, 1);
    EXPECT_EQ(valueOf(catalogue_, "SELECT count(*) FROM tracks WHERE is_gone = 1"), "2");
    const Scan::Ending whole = sweep({{a, false}, {"/"}, {music_.file("ab"), false}});
    EXPECT_EQ(whole.gone, 4);
    EXPECT_EQ(whole.keptAbsent, 3);
    EXPECT_EQ(sweep({{"/", false}}).keptAbsent, 3);
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

}  // namespace
}  // namespace catalogue
