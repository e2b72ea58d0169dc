// SPDX-License-Identifier: MIT
#include "catalogue/Catalogue.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include "catalogue/CatalogueError.h"
#include "catalogue/StoredTracks.h"
#include "catalogue/TrackStore.h"
#include "catalogue/schema.h"
#include "support/TemporaryFolder.h"

namespace catalogue {
namespace {

using test::valueOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

using Access = Catalogue::Access;

/** What a process returns that may do no more than anybody: the superuser may write everywhere. */
template <class Work>
int statusAsAnybody(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit(geteuid() == 0 && setuid(65534) != 0 ? 1 : work());
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class CatalogueFile : public testing::Test {
protected:
    std::string refusalOf(Access access) const {
        try {
            const Catalogue opened(path_, access);
        } catch (const CatalogueError& error) {
            return error.what();
        }
        return "opened";
    }

    void execute(const std::string& sql) const {
        SQLite::Database(path_, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec(sql);
    }

    test::TemporaryFolder folder_;
    std::string path_ = folder_.file("tracks.sqlite");
};

TEST_F(CatalogueFile, IsMadeOnlyWhenAskedFor) {
    EXPECT_EQ(refusalOf(Access::read), path_ + ": there is no such catalogue");
    EXPECT_EQ(refusalOf(Access::write), path_ + ": there is no such catalogue");
    EXPECT_THAT(folder_.names(), ElementsAre());
    EXPECT_EQ(refusalOf(Access::create), "opened");
    EXPECT_EQ(refusalOf(Access::write), "opened");
    EXPECT_EQ(refusalOf(Access::read), "opened");
}

TEST_F(CatalogueFile, SaysWhatItIs) {
    const Catalogue made(path_, Access::create);
    EXPECT_EQ(valueOf(made, "PRAGMA application_id"), std::to_string(0x42744174));
    EXPECT_EQ(valueOf(made, "PRAGMA user_version"), "4");
    EXPECT_EQ(valueOf(made, "PRAGMA journal_mode"), "wal");
    EXPECT_EQ(valueOf(made, "PRAGMA foreign_keys"), "1");
}

TEST_F(CatalogueFile, OfANewerVersionIsRefusedAndLeftAsItIs) {
    { const Catalogue made(path_, Access::create); }
    execute("PRAGMA user_version = 5; PRAGMA journal_mode = DELETE");
    const std::string before = test::readFile(path_);
    for (const Access access : {Access::read, Access::write, Access::create})
        EXPECT_EQ(refusalOf(access), path_ + ": is a catalogue of version 5; this program knows "
                                             "versions up to 4");
    EXPECT_EQ(test::readFile(path_), before);
}

TEST_F(CatalogueFile, ThatIsAnythingElseIsRefusedAndLeftAsItIs) {
    execute("CREATE TABLE notes (text TEXT); INSERT INTO notes VALUES ('mine')");
    const std::string database = test::readFile(path_);
    const std::string text(5000, 'x');
    for (const std::string& bytes : {database, text, std::string("short")}) {
        test::writeFile(path_, bytes);
        for (const Access access : {Access::read, Access::write, Access::create})
            EXPECT_THAT(refusalOf(access), EndsWith("is no catalogue of Beat Atlas"));
        EXPECT_EQ(test::readFile(path_), bytes);
    }
}

TEST_F(CatalogueFile, ThatIsDamagedIsRefusedInOneLine) {
    {
        Catalogue made(path_, Access::create);
        test::store(made, {test::analysedTrack("/a", 1)});
    }
    // Everything behind the header's hundred bytes is gone.
    std::string bytes = test::readFile(path_);
    bytes.replace(100, bytes.size() - 100, std::string(bytes.size() - 100, '\xFF'));
    test::writeFile(path_, bytes);
    for (const Access access : {Access::read, Access::write, Access::create})
        EXPECT_EQ(refusalOf(access), path_ + ": is damaged");
    EXPECT_EQ(test::readFile(path_), bytes);
}

TEST_F(CatalogueFile, NamedAsSQLiteNamesMemoryOrAnAddressIsAFileAllTheSame) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    { const Catalogue memory(":memory:", Access::create); }
    { const Catalogue address("file:x?mode=memory", Access::create); }
    std::filesystem::current_path(before);
    EXPECT_THAT(folder_.names(), ElementsAre(":memory:", "file:x?mode=memory"));
}

TEST_F(CatalogueFile, ThatIsAFolderIsRefused) {
    std::filesystem::create_directory(path_);
    EXPECT_EQ(refusalOf(Access::create), path_ + ": is a folder, not a catalogue");
}

/** Version 1 has no text search. */
void makeVersionOne(const std::string& path) {
    SQLite::Database old(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    takeSchemaSteps(old, 1);
    old.exec("INSERT INTO tracks (path, size, modified_ns, audio_hash, container, codec, channels, "
             "file_rate, rate, format_changes, artist, title, frames, seconds, added_at, "
             "artist_order, title_order) VALUES (CAST('/Müsik/a.mp3' AS BLOB), 1, 2, "
             "zeroblob(16), 'mp3', 'mp3', 2, 44100, 44100, 0, 'Ärtist', 'Song', 441000, 10.0, 0, "
             "'artist', 'song')");
}

TEST_F(CatalogueFile, OfAnOlderVersionIsBroughtUpToDateWithACopyBeside) {
    makeVersionOne(path_);
    EXPECT_THAT(refusalOf(Access::read), HasSubstr("is a catalogue of an older version"));
    const Catalogue catalogue(path_, Access::write);
    EXPECT_EQ(valueOf(catalogue, "PRAGMA user_version"), "4");
    EXPECT_EQ(valueOf(catalogue, "SELECT search FROM tracks"), "/musik/a.mp3\nartist\nsong");
    EXPECT_EQ(valueOf(catalogue, "SELECT rowid FROM track_search WHERE search MATCH 'usi'"), "1");
    EXPECT_EQ(valueOf(catalogue, "PRAGMA integrity_check"), "ok");
    SQLite::Database copy(path_ + ".version1", SQLite::OPEN_READONLY);
    EXPECT_EQ(copy.execAndGet("PRAGMA user_version").getInt(), 1);
    EXPECT_EQ(copy.execAndGet("SELECT title FROM tracks").getString(), "Song");
    // The search follows what changes from then on.
    catalogue.database().exec("UPDATE tracks SET search = 'other'");
    EXPECT_EQ(valueOf(catalogue, "SELECT count(*) FROM track_search WHERE search MATCH 'usi'"),
              "0");
    EXPECT_EQ(valueOf(catalogue, "SELECT count(*) FROM track_search WHERE search MATCH 'oth'"),
              "1");
}

/** Three tracks of two sounds, of which the second was corrected by itself, as version 2 has it. */
void makeVersionTwo(const std::string& path) {
    const test::TemporaryFolder folder;
    {
        Catalogue made(folder.file("c"), Catalogue::Access::create);
        test::store(made, {test::analysedTrack("/a", 1), test::analysedTrack("/b", 2),
                           test::analysedTrack("/copy of a", 1)});
    }
    SQLite::Database old(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    takeSchemaSteps(old, 2);
    old.exec("ATTACH '" + folder.file("c") + "' AS new");
    const auto copy = [&](const std::string& table, const std::string& columns) {
        old.exec("INSERT INTO main." + table + " (" + columns + ") SELECT " + columns +
                 " FROM new." + table);
    };
    copy("tracks", "id, path, size, modified_ns, audio_hash, container, codec, channels, "
                   "file_rate, rate, format_changes, artist, title, frames, seconds, added_at, "
                   "artist_order, title_order, result_id, bpm, key, confidence, search");
    copy("parameters", "id, json");
    copy("results", "id, track_id, parameters_id, made_at, tool_version, analysis_seconds, "
                    "warnings, bpm, raw_bpm, is_steady, tempo_confidence, level_confidence, "
                    "phase_confidence, bars_confidence, key, key_confidence, tuning_cents, "
                    "details");
    copy("grids", "result_id, beats");
    copy("waves", "result_id, loud, dots, zoom");
    old.exec("INSERT INTO main.corrections (track_id, kind, value, made_at) VALUES "
             "(1, 'halve', 0, 10), (2, 'key', 3, 20), (3, 'double', 0, 30), (3, 'key', 7, 40); "
             "UPDATE main.tracks SET is_corrected = 1");
}

// Both copies were corrected: the one on which somebody worked last decides.
TEST_F(CatalogueFile, OfVersionTwoGivesCorrectionsToTheSoundsOfItsTracks) {
    makeVersionTwo(path_);
    const Catalogue catalogue(path_, Access::write);
    EXPECT_EQ(valueOf(catalogue, "SELECT group_concat(hex(substr(audio_hash, 1, 1)) || kind || "
                                 "made_at) FROM corrections"),
              "02key20,01double30,01key40");
    EXPECT_EQ(valueOf(catalogue, "SELECT group_concat(bpm || ' ' || key || ' ' || is_corrected) "
                                 "FROM tracks"),
              "240.0 7 1,120.0 3 1,240.0 7 1");
    EXPECT_EQ(valueOf(catalogue, "SELECT count(*) FROM results WHERE asked_at = made_at"), "3");
    EXPECT_EQ(valueOf(catalogue, "SELECT count(*) FROM scan_progress"), "0");
    EXPECT_EQ(valueOf(catalogue, "PRAGMA integrity_check"), "ok");
    SQLite::Database copy(path_ + ".version2", SQLite::OPEN_READONLY);
    EXPECT_EQ(copy.execAndGet("SELECT count(*) FROM corrections").getInt(), 4);
}

// A folder in the way of the copy.
TEST_F(CatalogueFile, OfAnOlderVersionStaysOldWhereNoCopyCanBeMade) {
    makeVersionOne(path_);
    std::filesystem::create_directories(path_ + ".version1.draft/in the way");
    EXPECT_NE(refusalOf(Access::write), "opened");
    SQLite::Database still(path_, SQLite::OPEN_READONLY);
    EXPECT_EQ(still.execAndGet("PRAGMA user_version").getInt(), 1);
}

// What a step does is undone with it when the next one fails: the table is there already.
TEST_F(CatalogueFile, OfAnOlderVersionStaysOldWhereAStepFails) {
    makeVersionOne(path_);
    execute("CREATE TABLE track_search (other TEXT)");
    EXPECT_NE(refusalOf(Access::write), "opened");
    SQLite::Database still(path_, SQLite::OPEN_READONLY);
    EXPECT_EQ(still.execAndGet("PRAGMA user_version").getInt(), 1);
    EXPECT_EQ(still
                  .execAndGet("SELECT count(*) FROM pragma_table_info('tracks') WHERE name = "
                              "'search'")
                  .getInt(),
              0);
}

TEST_F(CatalogueFile, CanBeReadWhereNothingMayBeWritten) {
    {
        Catalogue made(path_, Access::create);
        test::store(made, {test::analysedTrack("/a", 1)});
    }
    namespace fs = std::filesystem;
    fs::permissions(path_, fs::perms(0444));
    fs::permissions(folder_.path(), fs::perms(0555));
    const int status = statusAsAnybody([&] {
        if (refusalOf(Access::write) != path_ + ": may not be written to") return 2;
        if (refusalOf(Access::read) != "opened") return 3;
        return valueOf(Catalogue(path_, Access::read), "SELECT title FROM tracks") == "Track 1" ? 0
                                                                                                : 4;
    });
    fs::permissions(folder_.path(), fs::perms::owner_all);
    EXPECT_EQ(status, 0);
}

// The names in such a folder cannot be brought to the disk.
TEST_F(CatalogueFile, OfAnOlderVersionIsBroughtUpToDateWhereItsFolderCannotBeListed) {
    makeVersionOne(path_);
    namespace fs = std::filesystem;
    fs::permissions(path_, fs::perms(0666));
    fs::permissions(folder_.path(), fs::perms(0333));
    const int status =
        statusAsAnybody([&] { return refusalOf(Access::write) == "opened" ? 0 : 2; });
    fs::permissions(folder_.path(), fs::perms::owner_all);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(valueOf(Catalogue(path_, Access::read), "PRAGMA user_version"),
              std::to_string(kSchemaVersion));
    EXPECT_TRUE(fs::exists(path_ + ".version1"));
}

/** A disk of 2 MB, which takes the superuser to mount. */
class SmallDisk {
public:
    explicit SmallDisk(std::string place) : place_(std::move(place)) {
        isMounted_ = mount("none", place_.c_str(), "tmpfs", 0, "size=2m") == 0;
    }
    ~SmallDisk() {
        if (isMounted_) umount(place_.c_str());
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return isMounted_; }

    /** Until not a byte is free. */
    void fill() const {
        std::ofstream ballast(place_ + "/ballast");
        const std::string block(4096, 'x');
        while (ballast.write(block.data(), 4096) && ballast.flush()) continue;
    }

private:
    std::string place_;
    bool isMounted_ = false;
};

TEST_F(CatalogueFile, CanBeReadBrieflyWhereTheDiskIsFull) {
    const SmallDisk disk(folder_.path());
    if (!disk.isMounted()) GTEST_SKIP() << "no disk can be mounted here";
    {
        Catalogue made(path_, Access::create);
        test::store(made, {test::analysedTrack("/a", 1)});
    }
    disk.fill();
    ASSERT_EQ(std::filesystem::space(folder_.path()).available, 0U);
    EXPECT_EQ(valueOf(Catalogue(path_, Access::readBriefly), "SELECT title FROM tracks"),
              "Track 1");
    EXPECT_NE(refusalOf(Access::read), "opened");
}

// As seen by readers: nothing, or all of what was committed.
TEST_F(CatalogueFile, KeepsWhatWasCommittedWhenTheProcessIsKilled) {
    { const Catalogue made(path_, Access::create); }
    const pid_t child = fork();
    if (child == 0) {
        Catalogue own(path_, Access::write);
        Scan scan(own, {parametersText(test::everything()), false, false});
        scan.settle();
        scan.put(test::analysedTrack("/committed", 1));
        scan.commit();
        scan.put(test::analysedTrack("/not committed", 2));
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    const Catalogue read(path_, Access::write);
    EXPECT_EQ(valueOf(read, "SELECT group_concat(CAST(path AS TEXT)) FROM tracks"), "/committed");
    EXPECT_EQ(valueOf(read, "PRAGMA integrity_check"), "ok");
}

// A small cache has the pages of the new tables written before they are committed.
TEST_F(CatalogueFile, ThatWasHalfMadeWhenTheProcessWasKilledIsMadeAnew) {
    for (const Access access : {Access::create, Access::write}) {
        const pid_t child = fork();
        if (child == 0) {
            SQLite::Database half(path_, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
            half.exec("PRAGMA cache_size = 1; BEGIN IMMEDIATE");
            takeSchemaSteps(half);
            kill(getpid(), SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_GT(std::filesystem::file_size(path_), 0U);
        ASSERT_TRUE(std::filesystem::exists(path_ + "-journal"));
        EXPECT_EQ(refusalOf(access),
                  access == Access::create ? "opened" : path_ + ": there is no such catalogue");
        std::filesystem::remove(path_);
    }
}

// A limit of SQLite's own on the file's length fails as a full disk does.
TEST_F(CatalogueFile, OnAFullDiskSaysSoAndLosesNothing) {
    Catalogue catalogue(path_, Access::create);
    test::store(catalogue, {test::analysedTrack("/first", 1)});
    catalogue.database().exec("PRAGMA max_page_count = " + valueOf(catalogue, "PRAGMA page_count"));
    std::string reason;
    try {
        Scan scan(catalogue, {parametersText(test::everything()), false, false});
        scan.settle();
        for (int i = 0; i < 100; ++i)
            scan.put(test::analysedTrack("/more " + std::to_string(i), 2 + i));
    } catch (const CatalogueError& error) {
        reason = error.what();
    }
    EXPECT_EQ(reason, path_ + ": cannot be written: the disk is full");
    EXPECT_EQ(valueOf(catalogue, "PRAGMA integrity_check"), "ok");
    EXPECT_EQ(valueOf(catalogue, "SELECT count(*) FROM tracks WHERE path = CAST('/first' AS BLOB)"),
              "1");
    catalogue.database().exec("PRAGMA max_page_count = 100000");
    test::store(catalogue, {test::analysedTrack("/later", 3)});
    EXPECT_EQ(valueOf(catalogue, "SELECT count(*) FROM tracks WHERE path = CAST('/later' AS BLOB)"),
              "1");
}

// Whoever deletes it parts it from its log: what comes would be lost without a word.
TEST_F(CatalogueFile, ThatIsMovedOrDeletedWhileItIsWrittenIsNoticed) {
    for (const bool isDeleted : {false, true}) {
        Catalogue catalogue(path_, Access::create);
        Scan scan(catalogue, {parametersText(test::everything()), false, false});
        scan.settle();
        scan.put(test::analysedTrack("/a", 1));
        scan.commit();
        std::filesystem::rename(path_, path_ + ".moved");
        if (isDeleted) std::filesystem::remove(path_ + ".moved");
        scan.put(test::analysedTrack("/b", 2));
        std::string reason;
        try {
            scan.commit();
        } catch (const CatalogueError& error) {
            reason = error.what();
        }
        EXPECT_EQ(reason, path_ + ": was moved or deleted while it was being written");
    }
}

}  // namespace
}  // namespace catalogue
