// SPDX-License-Identifier: MIT
#include "catalogue/merge/Merge.h"

#include <csignal>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <sys/resource.h>

#include "catalogue/CatalogueError.h"
#include "catalogue/StoredTracks.h"
#include "catalogue/TrackStore.h"
#include "catalogue/correction/Corrections.h"
#include "support/TemporaryFolder.h"

namespace catalogue {
namespace {

using test::analysedTrack;
using test::valueOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class MergedCatalogues : public testing::Test {
protected:
    std::string file(const std::string& name) { return folder_.file(name); }

    /** A catalogue in which each track's result was made at that time. */
    void make(const std::string& name, const std::vector<Analysed>& tracks, std::int64_t madeAt) {
        Catalogue made(file(name), Catalogue::Access::create);
        test::store(made, tracks);
        made.database().exec("UPDATE results SET made_at = " + std::to_string(madeAt) +
                             ", asked_at = " + std::to_string(madeAt));
        made.database().exec("UPDATE tracks SET added_at = " + std::to_string(madeAt));
    }

    void correct(const std::string& name, const Edit& edit, int madeAt) {
        const Catalogue catalogue(file(name), Catalogue::Access::write);
        Corrections(catalogue).add(TrackStore(catalogue).find("/1").value_or(1), edit);
        catalogue.database().exec("UPDATE corrections SET made_at = " + std::to_string(madeAt) +
                                  " WHERE id = (SELECT max(id) FROM corrections)");
    }

    MergeCounts merge(const std::vector<std::string>& names, const std::string& output) {
        std::vector<std::string> inputs;
        for (const std::string& name : names) inputs.push_back(file(name));
        conflicts_.clear();
        return mergeCatalogues(inputs, file(output),
                               [&](const std::string& path) { conflicts_.push_back(path); });
    }

    std::string value(const std::string& name, const std::string& query) {
        return valueOf(Catalogue(file(name), Catalogue::Access::read), query);
    }

    /** Every row of every table. */
    std::vector<std::string> contentOf(const std::string& name) {
        const Catalogue catalogue(file(name), Catalogue::Access::read);
        std::vector<std::string> rows;
        for (const char* table :
             {"tracks", "parameters", "results", "grids", "waves", "corrections", "failures"}) {
            SQLite::Statement select(catalogue.database(), std::string("SELECT * FROM ") + table);
            while (select.executeStep()) {
                std::string row = table;
                for (int i = 0; i < select.getColumnCount(); ++i)
                    row += '|' + select.getColumn(i).getString();
                rows.push_back(row);
            }
        }
        return rows;
    }

    test::TemporaryFolder folder_;
    std::vector<std::string> conflicts_;
};

TEST_F(MergedCatalogues, HoldTheTracksOfAll) {
    make("a", {analysedTrack("/1", 1), analysedTrack("/2", 2)}, 100);
    make("b", {analysedTrack("/2", 2), analysedTrack("/3", 3)}, 100);
    EXPECT_EQ(merge({"a", "b"}, "c").tracks, 3);
    EXPECT_EQ(value("c", "SELECT count(*) FROM results"), "3");
    EXPECT_EQ(value("c", "SELECT count(*) FROM track_search WHERE search MATCH 'exa'"), "3");
    EXPECT_EQ(value("c", "PRAGMA integrity_check"), "ok");
}

TEST_F(MergedCatalogues, AreTheSameWhateverTheOrderAndHoweverOften) {
    Analysed other = analysedTrack("/2", 2);
    other.result.parameters = parametersText({});
    make("a", {analysedTrack("/1", 1), analysedTrack("/2", 2), analysedTrack("/4", 4)}, 100);
    make("b", {other, analysedTrack("/3", 3), analysedTrack("/4", 5)}, 200);
    make("c", {analysedTrack("/0", 1)}, 200);
    correct("a", {EditKind::twice}, 100);
    correct("c", {EditKind::half}, 300);
    merge({"a", "b", "c"}, "abc");
    const auto content = contentOf("abc");
    EXPECT_THAT(content, Not(IsEmpty()));
    merge({"c", "b", "a"}, "cba");
    EXPECT_EQ(contentOf("cba"), content);
    merge({"abc"}, "again");
    EXPECT_EQ(contentOf("again"), content);
    merge({"abc", "abc", "b"}, "twice");
    EXPECT_EQ(contentOf("twice"), content);
    merge({"a", "b"}, "ab");
    merge({"ab", "c"}, "ab+c");
    EXPECT_EQ(contentOf("ab+c"), content);
}

TEST_F(MergedCatalogues, HoldTheNewestResultOfEachSetOfParameters) {
    Analysed older = analysedTrack("/1", 1);
    older.result.bpm = 60.0;
    Analysed other = older;
    other.result.parameters = parametersText({});
    make("old", {older, other}, 100);
    make("new", {analysedTrack("/1", 1)}, 200);
    merge({"new", "old"}, "c");
    EXPECT_EQ(value("c", "SELECT group_concat(bpm || '@' || made_at) FROM (SELECT * FROM results "
                         "ORDER BY made_at)"),
              "60.0@100,120.0@200");
    EXPECT_EQ(value("c", "SELECT bpm FROM tracks"), "120.0");
    EXPECT_EQ(value("c", "SELECT added_at FROM tracks"), "100");
}

TEST_F(MergedCatalogues, DropResultsOfASoundThatIsNoLongerTheFiles) {
    Analysed older = analysedTrack("/1", 1);
    older.result.parameters = parametersText({});
    make("old", {older}, 100);
    make("new", {analysedTrack("/1", 2)}, 200);
    merge({"old", "new"}, "c");
    EXPECT_EQ(value("c", "SELECT count(*) FROM results"), "1");
    EXPECT_EQ(value("c", "SELECT hex(audio_hash) FROM tracks").substr(0, 2), "02");
}

TEST_F(MergedCatalogues, KeepCorrectionsOfEither) {
    make("a", {analysedTrack("/1", 1)}, 100);
    make("b", {analysedTrack("/1", 1)}, 200);
    correct("a", {EditKind::twice}, 10);
    EXPECT_EQ(merge({"a", "b"}, "c").conflicts, 0);
    EXPECT_EQ(value("c", "SELECT bpm || ' ' || is_corrected FROM tracks"), "240.0 1");
}

TEST_F(MergedCatalogues, KeepTheNewerOfTwoCorrectionsAndSaySo) {
    make("a", {analysedTrack("/1", 1)}, 100);
    make("b", {analysedTrack("/1", 1)}, 100);
    correct("a", {EditKind::twice}, 20);
    correct("b", {EditKind::half}, 10);
    EXPECT_EQ(merge({"b", "a"}, "c").conflicts, 1);
    EXPECT_THAT(conflicts_, ElementsAre("/1"));
    EXPECT_EQ(value("c", "SELECT kind FROM corrections"), "double");
}

TEST_F(MergedCatalogues, KeepTheKeyOfOneAndTheTempoOfTheOther) {
    make("a", {analysedTrack("/1", 1)}, 100);
    make("b", {analysedTrack("/elsewhere", 1), analysedTrack("/1", 2)}, 100);
    correct("a", {EditKind::twice}, 20);
    {
        const Catalogue other(file("b"), Catalogue::Access::write);
        Corrections(other).add(1, {EditKind::key, 3.0});
        other.database().exec("UPDATE corrections SET made_at = 10");
    }
    EXPECT_EQ(merge({"b", "a"}, "c").conflicts, 0);
    EXPECT_EQ(value("c", "SELECT group_concat(kind) FROM corrections"), "key,double");
    EXPECT_EQ(value("c", "SELECT bpm || ' ' || key FROM tracks WHERE path = CAST('/elsewhere' AS "
                         "BLOB)"),
              "240.0 3");
}

TEST_F(MergedCatalogues, KeepCorrectionsOfSoundsThatNoTrackHas) {
    make("a", {analysedTrack("/1", 1)}, 100);
    correct("a", {EditKind::twice}, 10);
    Catalogue(file("a"), Catalogue::Access::write).database().exec("DELETE FROM tracks");
    merge({"a"}, "b");
    EXPECT_EQ(value("b", "SELECT kind || made_at FROM corrections"), "double10");
}

TEST_F(MergedCatalogues, ShowTheResultThatAnyOfThemWasAskedForLast) {
    Analysed other = analysedTrack("/1", 1);
    other.result.parameters = parametersText({});
    other.result.bpm = 99.0;
    make("a", {analysedTrack("/1", 1), other}, 100);
    make("b", {analysedTrack("/1", 1)}, 100);
    const auto ask = [&](const std::string& name, int id, int at) {
        Catalogue(file(name), Catalogue::Access::write)
            .database()
            .exec("UPDATE results SET asked_at = " + std::to_string(at) +
                  " WHERE id = " + std::to_string(id));
    };
    ask("a", 1, 100);
    ask("a", 2, 200);
    ask("b", 1, 300);
    merge({"a", "b"}, "c");
    EXPECT_EQ(value("c", "SELECT bpm FROM tracks"), "120.0");
}

TEST_F(MergedCatalogues, TakeCorrectionsThatContinueOthersForNoConflict) {
    make("a", {analysedTrack("/1", 1)}, 100);
    make("b", {analysedTrack("/1", 1)}, 100);
    correct("a", {EditKind::twice}, 10);
    correct("b", {EditKind::twice}, 10);
    correct("b", {EditKind::key, 3.0}, 20);
    EXPECT_EQ(merge({"a", "b"}, "c").conflicts, 0);
    EXPECT_EQ(value("c", "SELECT group_concat(kind) FROM corrections"), "double,key");
}

TEST_F(MergedCatalogues, HoldFailuresThatNoAnalysisHasFollowed) {
    for (const auto& [name, at] : {std::pair("a", 100), std::pair("b", 300)}) {
        Catalogue catalogue(file(name), Catalogue::Access::create);
        Scan scan(catalogue, {"{}", false, false});
        scan.settle();
        scan.putFailure("/1", {1, 1}, {FailureKind::damaged, name});
        scan.putFailure("/2", {1, 1}, {FailureKind::damaged, name});
        scan.commit();
        catalogue.database().exec("UPDATE failures SET last_at = " + std::to_string(at));
    }
    make("good", {analysedTrack("/2", 2)}, 400);
    merge({"b", "good", "a"}, "c");
    EXPECT_EQ(value("c", "SELECT group_concat(CAST(path AS TEXT) || reason) FROM failures"), "/1b");
}

TEST_F(MergedCatalogues, TakeATrackForGoneOnlyWhereAllDo) {
    make("a", {analysedTrack("/1", 1), analysedTrack("/2", 2)}, 100);
    make("b", {analysedTrack("/1", 1), analysedTrack("/2", 2)}, 100);
    Catalogue(file("a"), Catalogue::Access::write)
        .database()
        .exec("UPDATE tracks SET gone_at = 500");
    Catalogue(file("b"), Catalogue::Access::write)
        .database()
        .exec("UPDATE tracks SET gone_at = 600 WHERE id = 1");
    merge({"a", "b"}, "c");
    EXPECT_EQ(value("c", "SELECT group_concat(ifnull(gone_at, 'there')) FROM tracks"), "600,there");
}

TEST_F(MergedCatalogues, ReplaceNoFileAndLeaveNoHalfOne) {
    make("a", {analysedTrack("/1", 1)}, 100);
    test::writeFile(file("there"), "mine");
    EXPECT_THROW(merge({"a"}, "there"), CatalogueError);
    EXPECT_EQ(test::readFile(file("there")), "mine");
    EXPECT_THROW(merge({"a", "absent"}, "c"), CatalogueError);
    // A key that is none is noticed on the way.
    {
        const Catalogue damaged(file("a"), Catalogue::Access::write);
        damaged.database().exec("UPDATE tracks SET audio_hash = x'00'");
    }
    EXPECT_THROW(merge({"a"}, "c"), CatalogueError);
    EXPECT_THAT(folder_.names(), Not(Contains("c")));
    EXPECT_THAT(folder_.names(), Not(Contains("c.draft")));
}

/** No file grows beyond so many bytes while this lives, as on a disk that is full then. */
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        signal_ = std::signal(SIGXFSZ, SIG_IGN);
        const struct rlimit limit = {bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    struct rlimit before_ = {};
    void (*signal_)(int) = nullptr;
};

TEST_F(MergedCatalogues, AreRefusedWhereTheDiskHasRoomForTheLogAlone) {
    // 400 tracks of 30 KB make 12 MB; the log is taken over every 200 tracks, so that it would fit.
    std::vector<Analysed> tracks;
    for (int i = 0; i < 400; ++i) {
        tracks.push_back(analysedTrack("/" + std::to_string(i), i % 256));
        tracks.back().result.zoomWave.assign(30000, 'z');
    }
    make("a", tracks, 100);
    {
        const FileSizeLimit limit(9000000);
        EXPECT_THROW(merge({"a"}, "whole"), CatalogueError);
    }
    EXPECT_FALSE(std::filesystem::exists(file("whole")));
    EXPECT_EQ(merge({"a"}, "whole").tracks, 400);
}

TEST_F(MergedCatalogues, LeaveNoDraftWhereItsFirstPageHasNoRoom) {
    make("a", {analysedTrack("/1", 1)}, 100);
    {
        const FileSizeLimit limit(1000);
        EXPECT_THROW(merge({"a"}, "whole"), CatalogueError);
    }
    EXPECT_THAT(folder_.names(), Not(Contains(testing::HasSubstr("whole"))));
}

// Each catalogue takes three of the files that a process may have open.
TEST_F(MergedCatalogues, MayBeMoreThanAProcessUsuallyHasOpen) {
    make("a", {analysedTrack("/1", 1)}, 100);
    struct rlimit before = {};
    getrlimit(RLIMIT_NOFILE, &before);
    if (before.rlim_max < 512) GTEST_SKIP() << "the system allows too few open files";
    const struct rlimit few = {64, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &few);
    const std::vector<std::string> many(100, "a");
    EXPECT_EQ(merge(many, "whole").tracks, 1);
    setrlimit(RLIMIT_NOFILE, &before);
}

TEST_F(MergedCatalogues, AreNotPutBesideTheLogOfAnotherThatWasThere) {
    make("a", {analysedTrack("/1", 1)}, 100);
    std::ofstream(file("whole-wal")) << "of a catalogue that somebody deleted";
    EXPECT_THROW(merge({"a"}, "whole"), CatalogueError);
    EXPECT_FALSE(std::filesystem::exists(file("whole")));
    EXPECT_TRUE(std::filesystem::exists(file("whole-wal")));
}

}  // namespace
}  // namespace catalogue
