// SPDX-License-Identifier: MIT
#include "catalogue/Scan.h"

#include <utility>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Savepoint.h>
#include <SQLiteCpp/Statement.h>

#include "base/Interrupt.h"
#include "catalogue/FileLock.h"
#include "catalogue/FoundFiles.h"
#include "catalogue/TrackStore.h"
#include "catalogue/WriteBatch.h"
#include "catalogue/fileExists.h"
#include "catalogue/folded.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr const char* kPutFailure = R"sql(
INSERT INTO failures (path, size, modified_ns, kind, reason, attempts, last_at)
VALUES (?1, ?2, ?3, ?4, ?5, 1, ?6)
ON CONFLICT (path) DO UPDATE SET
    size = excluded.size, modified_ns = excluded.modified_ns, kind = excluded.kind,
    reason = excluded.reason, attempts = attempts + 1, last_at = excluded.last_at)sql";

constexpr const char* kDropFailure = "DELETE FROM failures WHERE path = ?1";

/** Corrected ones first: of two copies that are gone, it is the one that somebody worked on. */
constexpr const char* kOfHash = R"sql(
SELECT id, path, is_corrected FROM tracks WHERE audio_hash = ?1 ORDER BY is_corrected DESC, id)sql";

constexpr const char* kAtPath = "SELECT id, audio_hash, is_corrected FROM tracks WHERE path = ?1";
constexpr const char* kDropTrack = "DELETE FROM tracks WHERE id = ?1";

/** ?2: with its corrections, of which there may be some since the track was read. */
constexpr const char* kPrune = "DELETE FROM tracks WHERE id = ?1 AND (?2 OR is_corrected = 0)";

constexpr const char* kMove = R"sql(
UPDATE tracks SET path = ?2, size = ?3, modified_ns = ?4, gone_at = NULL, search = ?5
WHERE id = ?1)sql";

constexpr const char* kTags = "SELECT artist, title FROM tracks WHERE id = ?1";

constexpr const char* kHasResult = R"sql(
SELECT 1 FROM results r JOIN parameters p ON p.id = r.parameters_id
WHERE r.track_id = ?1 AND p.json = ?2)sql";

/** Paths in the folder: bytes that begin with it and '/', which '0' follows. */
constexpr const char* kTracksBelow = R"sql(
SELECT id, path, is_gone FROM tracks
WHERE path = ?1 OR (path > ?2 AND path < ?3))sql";
constexpr const char* kFailuresBelow =
    "SELECT path FROM failures WHERE path = ?1 OR (path > ?2 AND path < ?3)";

constexpr const char* kMarkGone = "UPDATE tracks SET gone_at = ?2 WHERE id = ?1";

constexpr const char* kRecord = "record";

struct GoneTrack {
    TrackStore::Id id;
    bool isMarked;
};

void bindRoot(SQLite::Statement& statement, const std::string& root) {
    const std::string folder = root.ends_with('/') ? root.substr(0, root.size() - 1) : root;
    bindBytes(statement, 1, folder);
    bindBytes(statement, 2, folder + '/');
    bindBytes(statement, 3, folder + '0');
}

}  // namespace

class Scan::Storage {
public:
    Storage(Catalogue& catalogue, Plan plan)
        : lock_(catalogue.filePath() + ".lock"), catalogue_(catalogue), plan_(std::move(plan)),
          store_(catalogue), batch_(catalogue), found_(catalogue) {}

    FoundFiles& files() { return found_; }
    Counts settle() { return found_.settle(plan_); }
    void put(const Analysed& analysed);
    void putFailure(const std::string& path, const FileState& state, const Failure& failure);
    bool adoptMoved(const std::string& path, const FileState& state, const AudioHash& hash);
    void commit() { batch_.commit(); }
    Ending finish(const std::vector<std::string>& roots, Pruning pruning);

private:
    std::optional<TrackStore::Id> adopt(const std::string& path, const FileState& state,
                                        const AudioHash& hash);
    std::optional<TrackStore::Id> movedTrack(const std::string& path, const std::string& hash);
    void move(TrackStore::Id track, const std::string& path, const FileState& state);
    bool hasResult(TrackStore::Id track);
    bool isGone(const std::string& path) { return !found_.contains(path) && !fileExists(path); }
    void drop(const char* sql, const std::string& path);
    void drop(TrackStore::Id track);
    std::vector<GoneTrack> goneTracks(const std::string& root);
    std::vector<std::string> goneFailures(const std::string& root);
    void endTracks(const std::vector<GoneTrack>& gone, Pruning pruning, Ending& ending);

    FileLock lock_;
    Catalogue& catalogue_;
    Plan plan_;
    TrackStore store_;
    WriteBatch batch_;
    FoundFiles found_;
};

void Scan::Storage::put(const Analysed& analysed) {
    const TrackRow& track = analysed.track;
    batch_.begin();
    // The whole record or nothing of it: what is in a batch is committed even where a record fails.
    SQLite::Savepoint record(catalogue_.database(), kRecord);
    adopt(track.path, track.state, track.hash);
    const TrackStore::Id id = store_.putTrack(track);
    store_.putResult(id, analysed.result, secondsNow());
    store_.refresh(id);
    drop(kDropFailure, track.path);
    record.release();
    batch_.recordWritten();
}

void Scan::Storage::putFailure(const std::string& path, const FileState& state,
                               const Failure& failure) {
    batch_.begin();
    SQLite::Statement put(catalogue_.database(), kPutFailure);
    bindBytes(put, 1, path);
    put.bind(2, state.size);
    put.bind(3, state.modifiedNanoseconds);
    put.bind(4, failureName(failure.kind));
    put.bind(5, failure.reason);
    put.bind(6, secondsNow());
    put.exec();
    batch_.recordWritten();
}

bool Scan::Storage::adoptMoved(const std::string& path, const FileState& state,
                               const AudioHash& hash) {
    batch_.begin();
    SQLite::Savepoint record(catalogue_.database(), kRecord);
    const auto track = adopt(path, state, hash);
    const bool isDone = track && hasResult(*track) && !plan_.rescansAll;
    if (isDone) drop(kDropFailure, path);
    record.release();
    batch_.recordWritten();
    return isDone;
}

/** The track of this sound that is at the path or was elsewhere and now is; nothing if there is
 *  none. What another sound at the path leaves behind gives way, unless somebody corrected it. */
std::optional<TrackStore::Id> Scan::Storage::adopt(const std::string& path, const FileState& state,
                                                   const AudioHash& hash) {
    const std::string sound(hash.begin(), hash.end());
    SQLite::Statement atPath(catalogue_.database(), kAtPath);
    bindBytes(atPath, 1, path);
    const bool isTaken = atPath.executeStep();
    if (isTaken && atPath.getColumn(1).getString() == sound) {
        const TrackStore::Id own = atPath.getColumn(0).getInt64();
        move(own, path, state);
        return own;
    }
    const auto moved = movedTrack(path, sound);
    if (!moved) return std::nullopt;
    if (isTaken) {
        if (atPath.getColumn(2).getInt() != 0) return std::nullopt;
        drop(atPath.getColumn(0).getInt64());
    }
    move(*moved, path, state);
    return moved;
}

std::optional<TrackStore::Id> Scan::Storage::movedTrack(const std::string& path,
                                                        const std::string& hash) {
    SQLite::Statement ofHash(catalogue_.database(), kOfHash);
    bindBytes(ofHash, 1, hash);
    while (ofHash.executeStep()) {
        const std::string known = ofHash.getColumn(1).getString();
        if (known != path && isGone(known)) return ofHash.getColumn(0).getInt64();
    }
    return std::nullopt;
}

void Scan::Storage::move(TrackStore::Id track, const std::string& path, const FileState& state) {
    SQLite::Statement tags(catalogue_.database(), kTags);
    tags.bind(1, track);
    if (!tags.executeStep()) return;
    const std::string search =
        searchText(path, tags.getColumn(0).getString(), tags.getColumn(1).getString());
    SQLite::Statement move(catalogue_.database(), kMove);
    move.bind(1, track);
    bindBytes(move, 2, path);
    move.bind(3, state.size);
    move.bind(4, state.modifiedNanoseconds);
    move.bind(5, search);
    move.exec();
}

bool Scan::Storage::hasResult(TrackStore::Id track) {
    SQLite::Statement select(catalogue_.database(), kHasResult);
    select.bind(1, track);
    select.bind(2, plan_.parameters);
    return select.executeStep();
}

void Scan::Storage::drop(const char* sql, const std::string& path) {
    SQLite::Statement statement(catalogue_.database(), sql);
    bindBytes(statement, 1, path);
    statement.exec();
}

void Scan::Storage::drop(TrackStore::Id track) {
    SQLite::Statement statement(catalogue_.database(), kDropTrack);
    statement.bind(1, track);
    statement.exec();
}

/** What is gone is looked for while others may write: a network's disk takes its time to answer. */
Scan::Ending Scan::Storage::finish(const std::vector<std::string>& roots, Pruning pruning) {
    Ending ending;
    for (const std::string& root : roots) {
        batch_.commit();
        endTracks(goneTracks(root), pruning, ending);
        batch_.commit();
        for (const std::string& path : goneFailures(root)) {
            batch_.begin();
            drop(kDropFailure, path);
            batch_.recordWritten();
        }
    }
    batch_.commit();
    return ending;
}

std::vector<GoneTrack> Scan::Storage::goneTracks(const std::string& root) {
    std::vector<GoneTrack> gone;
    SQLite::Statement below(catalogue_.database(), kTracksBelow);
    bindRoot(below, root);
    while (below.executeStep()) {
        base::Interrupt::check();
        if (isGone(below.getColumn(1).getString()))
            gone.push_back({below.getColumn(0).getInt64(), below.getColumn(2).getInt() != 0});
    }
    return gone;
}

/** A failure of a file that is no more is of no use to anybody. */
std::vector<std::string> Scan::Storage::goneFailures(const std::string& root) {
    std::vector<std::string> gone;
    SQLite::Statement below(catalogue_.database(), kFailuresBelow);
    bindRoot(below, root);
    while (below.executeStep()) {
        base::Interrupt::check();
        std::string path = below.getColumn(0).getString();
        if (isGone(path)) gone.push_back(std::move(path));
    }
    return gone;
}

void Scan::Storage::endTracks(const std::vector<GoneTrack>& gone, Pruning pruning, Ending& ending) {
    SQLite::Statement prune(catalogue_.database(), kPrune);
    SQLite::Statement mark(catalogue_.database(), kMarkGone);
    prune.bind(2, pruning == Pruning::all ? 1 : 0);
    mark.bind(2, secondsNow());
    for (const GoneTrack& track : gone) {
        batch_.begin();
        ++ending.gone;
        prune.bind(1, track.id);
        const bool isPruned = pruning != Pruning::none && execute(prune) > 0;
        if (isPruned) ++ending.pruned;
        if (!isPruned && pruning != Pruning::none) ++ending.keptCorrected;
        mark.bind(1, track.id);
        if (!isPruned && !track.isMarked) execute(mark);
        batch_.recordWritten();
    }
}

Scan::Scan(Catalogue& catalogue, Plan plan) : path_(catalogue.path()) {
    storage_ =
        guarded(path_, [&] { return std::make_unique<Storage>(catalogue, std::move(plan)); });
}

Scan::~Scan() {
    try {
        storage_->commit();
    } catch (...) {  // What could not be committed is as if it had not been done yet.
    }
}

void Scan::found(const std::string& path, const FileState& state, double weight) {
    guarded(path_, [&] { storage_->files().add(path, state, weight); });
}

Scan::Counts Scan::settle() {
    return guarded(path_, [&] { return storage_->settle(); });
}

std::optional<Scan::Work> Scan::next() {
    return guarded(path_, [&] { return storage_->files().take(); });
}

bool Scan::adoptMoved(const std::string& path, const FileState& state, const AudioHash& hash) {
    return guarded(path_, [&] { return storage_->adoptMoved(path, state, hash); });
}

void Scan::put(const Analysed& analysed) {
    guarded(path_, [&] { storage_->put(analysed); });
}

void Scan::putFailure(const std::string& path, const FileState& state, const Failure& failure) {
    guarded(path_, [&] { storage_->putFailure(path, state, failure); });
}

void Scan::commit() {
    guarded(path_, [&] { storage_->commit(); });
}

Scan::Ending Scan::finish(const std::vector<std::string>& roots, Pruning pruning) {
    return guarded(path_, [&] { return storage_->finish(roots, pruning); });
}

}  // namespace catalogue
