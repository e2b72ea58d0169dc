// SPDX-License-Identifier: MIT
#include "catalogue/Scan.h"

#include <utility>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Savepoint.h>
#include <SQLiteCpp/Statement.h>

#include "catalogue/FileLock.h"
#include "catalogue/FoundFiles.h"
#include "catalogue/ScanRecord.h"
#include "catalogue/Sweep.h"
#include "catalogue/TrackStore.h"
#include "catalogue/WriteBatch.h"
#include "catalogue/correction/carryCorrections.h"
#include "catalogue/dropStatements.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr const char* kPutFailure = R"sql(
INSERT INTO failures (path, size, modified_ns, kind, reason, attempts, last_at, tried_limit)
VALUES (?1, ?2, ?3, ?4, ?5, 1, ?6, ?7)
ON CONFLICT (path) DO UPDATE SET
    size = excluded.size, modified_ns = excluded.modified_ns, kind = excluded.kind,
    reason = excluded.reason, attempts = attempts + 1, last_at = excluded.last_at,
    tried_limit = excluded.tried_limit)sql";

constexpr const char* kOfHash = "SELECT id, path FROM tracks WHERE audio_hash = ?1 ORDER BY id";

constexpr const char* kAtPath = R"sql(
SELECT id, audio_hash, EXISTS (SELECT 1 FROM corrections c WHERE c.audio_hash = t.audio_hash)
FROM tracks t WHERE path = ?1)sql";

constexpr const char* kHasResult = R"sql(
SELECT 1 FROM results r JOIN parameters p ON p.id = r.parameters_id
WHERE r.track_id = ?1 AND p.json = ?2)sql";

/** Later than any other result of the track, also within a second. */
constexpr const char* kAskedNow = R"sql(
SELECT max(?2, ifnull((SELECT max(asked_at) + 1 FROM results WHERE track_id = ?1), 0)))sql";

constexpr const char* kRecord = "record";

}  // namespace

class Scan::Storage {
public:
    Storage(Catalogue& catalogue, Plan plan)
        : lock_(catalogue.filePath() + ".lock"), database_(catalogue.database()),
          plan_(std::move(plan)), store_(catalogue), record_(database_),
          batch_(catalogue, [this] { record_.write(); }), found_(catalogue) {}

    FoundFiles& files() { return found_; }
    Counts settle();
    bool put(const Analysed& analysed);
    void putFailure(const std::string& path, const FileState& state, const Failure& failure);
    Adoption adopt(const std::string& path, const FileState& state, const AudioHash& hash,
                   const base::TrackFormat& format);
    void commit() { batch_.commit(); }
    Ending finish(const std::vector<Root>& roots, Pruning pruning) {
        return Sweep(database_, found_, batch_).run(roots, pruning);
    }
    void end();

private:
    /** What is at a path or came there. */
    struct Occupant {
        std::optional<TrackStore::Id> track;
        bool isMoved = false;
        bool replacesCorrected = false;
    };

    Occupant occupy(const std::string& path, const FileState& state, const AudioHash& hash,
                    const base::TrackFormat& format);
    std::optional<TrackStore::Id> movedTrack(const std::string& path, const std::string& hash);
    std::int64_t askedNow(TrackStore::Id track);
    bool hasResult(TrackStore::Id track);
    void drop(const char* sql, const std::string& path);
    void drop(TrackStore::Id track);

    FileLock lock_;
    SQLite::Database& database_;
    Plan plan_;
    TrackStore store_;
    ScanRecord record_;
    WriteBatch batch_;
    FoundFiles found_;
};

Scan::Counts Scan::Storage::settle() {
    const Counts counts = found_.settle(plan_);
    batch_.begin();
    for (const TrackStore::Id track : found_.askFor(plan_.parameters)) store_.refresh(track);
    record_.begin(counts.toDo);
    batch_.commit();
    return counts;
}

bool Scan::Storage::put(const Analysed& analysed) {
    const TrackRow& track = analysed.track;
    batch_.begin();
    // The whole record or nothing of it: what is in a batch is committed even where a record fails.
    SQLite::Savepoint record(database_, kRecord);
    const Carrying carrying = carryCorrections(database_, store_, analysed);
    occupy(track.path, track.state, track.hash, track.format);
    const TrackStore::Id id = store_.putTrack(track);
    store_.putResult(id, analysed.result, secondsNow(), askedNow(id));
    if (carrying == Carrying::carried) {
        store_.refreshCopies(id);
    } else {
        store_.refresh(id);
    }
    drop(kDropFailure, track.path);
    record.release();
    record_.addDone(track.seconds);
    batch_.recordWritten();
    return carrying == Carrying::left;
}

void Scan::Storage::putFailure(const std::string& path, const FileState& state,
                               const Failure& failure) {
    batch_.begin();
    if (failure.kind != FailureKind::vanished) {
        SQLite::Statement put(database_, kPutFailure);
        bindBytes(put, 1, path);
        put.bind(2, state.size);
        put.bind(3, state.modifiedNanoseconds);
        put.bind(4, failureName(failure.kind));
        put.bind(5, failure.reason);
        put.bind(6, secondsNow());
        bindReal(put, 7, failure.limit);
        put.exec();
    }
    if (failure.kind == FailureKind::notAudio) {
        record_.addDone(0.0);
    } else {
        record_.addFailed();
    }
    batch_.recordWritten();
}

Scan::Adoption Scan::Storage::adopt(const std::string& path, const FileState& state,
                                    const AudioHash& hash, const base::TrackFormat& format) {
    batch_.begin();
    SQLite::Savepoint record(database_, kRecord);
    const Occupant occupant = occupy(path, state, hash, format);
    Adoption adoption;
    adoption.isMoved = occupant.isMoved;
    adoption.leavesCorrections = occupant.replacesCorrected;
    adoption.isDone = occupant.track && hasResult(*occupant.track) && !plan_.rescansAll;
    if (adoption.isDone) drop(kDropFailure, path);
    if (adoption.isDone) record_.addDone(0.0);
    record.release();
    batch_.recordWritten();
    return adoption;
}

/** The track of this sound that is at the path or was elsewhere and now is; none if there is none.
 *  What another sound at the path leaves behind gives way. */
Scan::Storage::Occupant Scan::Storage::occupy(const std::string& path, const FileState& state,
                                              const AudioHash& hash,
                                              const base::TrackFormat& format) {
    const std::string sound(hash.begin(), hash.end());
    SQLite::Statement atPath(database_, kAtPath);
    bindBytes(atPath, 1, path);
    const bool isTaken = atPath.executeStep();
    if (isTaken && atPath.getColumn(1).getString() == sound) {
        const TrackStore::Id own = atPath.getColumn(0).getInt64();
        store_.move(own, path, state, format);
        return {own};
    }
    const auto moved = movedTrack(path, sound);
    if (!moved) return {};
    const bool replacesCorrected = isTaken && atPath.getColumn(2).getInt() != 0;
    if (isTaken) drop(atPath.getColumn(0).getInt64());
    store_.move(*moved, path, state, format);
    return {moved, true, replacesCorrected};
}

std::optional<TrackStore::Id> Scan::Storage::movedTrack(const std::string& path,
                                                        const std::string& hash) {
    SQLite::Statement ofHash(database_, kOfHash);
    bindBytes(ofHash, 1, hash);
    while (ofHash.executeStep()) {
        const std::string known = ofHash.getColumn(1).getString();
        if (known != path && found_.isGone(known)) return ofHash.getColumn(0).getInt64();
    }
    return std::nullopt;
}

std::int64_t Scan::Storage::askedNow(TrackStore::Id track) {
    SQLite::Statement select(database_, kAskedNow);
    select.bind(1, track);
    select.bind(2, secondsNow());
    select.executeStep();
    return select.getColumn(0).getInt64();
}

bool Scan::Storage::hasResult(TrackStore::Id track) {
    SQLite::Statement select(database_, kHasResult);
    select.bind(1, track);
    select.bind(2, plan_.parameters);
    return select.executeStep();
}

void Scan::Storage::drop(const char* sql, const std::string& path) {
    SQLite::Statement statement(database_, sql);
    bindBytes(statement, 1, path);
    statement.exec();
}

void Scan::Storage::drop(TrackStore::Id track) {
    SQLite::Statement statement(database_, kDropTrack);
    statement.bind(1, track);
    statement.exec();
}

void Scan::Storage::end() {
    batch_.commit();
    if (!record_.isRunning()) return;
    batch_.begin();
    record_.end();
    batch_.commit();
}

Scan::Scan(Catalogue& catalogue, Plan plan) : path_(catalogue.path()) {
    storage_ =
        guarded(path_, [&] { return std::make_unique<Storage>(catalogue, std::move(plan)); });
}

Scan::~Scan() {
    try {
        storage_->end();
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

Scan::Adoption Scan::adopt(const std::string& path, const FileState& state, const AudioHash& hash,
                           const base::TrackFormat& format) {
    return guarded(path_, [&] { return storage_->adopt(path, state, hash, format); });
}

bool Scan::put(const Analysed& analysed) {
    return guarded(path_, [&] { return storage_->put(analysed); });
}

void Scan::putFailure(const std::string& path, const FileState& state, const Failure& failure) {
    guarded(path_, [&] { storage_->putFailure(path, state, failure); });
}

void Scan::commit() {
    guarded(path_, [&] { storage_->commit(); });
}

Scan::Ending Scan::finish(const std::vector<Root>& roots, Pruning pruning) {
    return guarded(path_, [&] { return storage_->finish(roots, pruning); });
}

}  // namespace catalogue
