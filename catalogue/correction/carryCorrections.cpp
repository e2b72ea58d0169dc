// SPDX-License-Identifier: MIT
#include "catalogue/correction/carryCorrections.h"

#include <optional>
#include <string>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "catalogue/CatalogueError.h"
#include "catalogue/TrackStore.h"
#include "catalogue/correction/sameSound.h"
#include "catalogue/sqlBinding.h"

namespace catalogue {

namespace {

constexpr const char* kAtPath =
    "SELECT id, audio_hash, size, modified_ns FROM tracks WHERE path = ?1";
constexpr const char* kIsCorrected = "SELECT 1 FROM corrections WHERE audio_hash = ?1";
constexpr const char* kHasCopy = "SELECT 1 FROM tracks WHERE audio_hash = ?1 AND id <> ?2";
constexpr const char* kCopy = R"sql(
INSERT INTO corrections (audio_hash, kind, value, made_at)
SELECT ?2, kind, value, made_at FROM corrections WHERE audio_hash = ?1 ORDER BY id)sql";
constexpr const char* kMoveCorrections =
    "UPDATE corrections SET audio_hash = ?2 WHERE audio_hash = ?1";

/** What the file was when it was last analysed. */
struct Earlier {
    TrackStore::Id track = 0;
    std::string hash;
    FileState state;
};

std::optional<Earlier> earlierAt(SQLite::Database& database, const std::string& path) {
    SQLite::Statement select(database, kAtPath);
    bindBytes(select, 1, path);
    if (!select.executeStep()) return std::nullopt;
    return Earlier{select.getColumn(0).getInt64(),
                   select.getColumn(1).getString(),
                   {select.getColumn(2).getInt64(), select.getColumn(3).getInt64()}};
}

bool isCorrected(SQLite::Database& database, const std::string& hash) {
    SQLite::Statement select(database, kIsCorrected);
    bindBytes(select, 1, hash);
    return select.executeStep();
}

bool isStillTheSound(TrackStore& store, TrackStore::Id track, const Analysed& next) {
    try {
        const auto earlier = store.read(track);
        return earlier && isSameSound(earlier->analysed, next);
    } catch (const DamagedRecord&) {
        return false;
    }
}

/** Copies of the file that were not analysed again yet keep theirs. */
void give(SQLite::Database& database, const Earlier& earlier, const std::string& hash) {
    SQLite::Statement hasCopy(database, kHasCopy);
    bindBytes(hasCopy, 1, earlier.hash);
    hasCopy.bind(2, earlier.track);
    SQLite::Statement give(database, hasCopy.executeStep() ? kCopy : kMoveCorrections);
    bindBytes(give, 1, earlier.hash);
    bindBytes(give, 2, hash);
    give.exec();
}

}  // namespace

Carrying carryCorrections(SQLite::Database& database, TrackStore& store, const Analysed& next) {
    const std::string hash(next.track.hash.begin(), next.track.hash.end());
    const auto earlier = earlierAt(database, next.track.path);
    if (!earlier || earlier->hash == hash || !isCorrected(database, earlier->hash))
        return Carrying::none;
    const bool isSameFile = earlier->state == next.track.state;
    if (isCorrected(database, hash)) return isSameFile ? Carrying::none : Carrying::left;
    if (!isSameFile && !isStillTheSound(store, earlier->track, next)) return Carrying::left;
    give(database, *earlier, hash);
    return Carrying::carried;
}

}  // namespace catalogue
