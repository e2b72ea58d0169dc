// SPDX-License-Identifier: MIT
// All inputs are read side by side in the order of their paths, so that memory does not grow with
// them and the output is numbered the same whatever their order.
#include "catalogue/merge/Merge.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <utility>

#include <SQLiteCpp/Database.h>

#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/fileLimit.h"
#include "catalogue/CatalogueError.h"
#include "catalogue/WriteBatch.h"
#include "catalogue/merge/MergeSource.h"
#include "catalogue/merge/joined.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

namespace fs = std::filesystem;

constexpr const char* kSetTimes = "UPDATE tracks SET added_at = ?2, gone_at = ?3 WHERE id = ?1";
constexpr const char* kAddEdit =
    "INSERT INTO corrections (audio_hash, kind, value, made_at) VALUES (?1, ?2, ?3, ?4)";
constexpr const char* kAddFailure =
    "INSERT INTO failures (path, last_at, attempts, kind, reason, size, modified_ns, tried_limit) "
    "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)";

/** A failure that an analysis has followed. */
constexpr const char* kDropOvercome = R"sql(
DELETE FROM failures WHERE EXISTS (
    SELECT 1 FROM tracks t JOIN results r ON r.track_id = t.id
    WHERE t.path = failures.path AND r.made_at >= failures.last_at))sql";

using Sources = std::vector<std::unique_ptr<MergeSource>>;

/** The catalogue in the making, which is removed unless it is finished. */
class Draft {
public:
    explicit Draft(std::string output) : output_(std::move(output)), path_(output_ + ".draft") {
        requireFree();
        remove();
        try {
            catalogue_.emplace(path_, Catalogue::Access::create);
        } catch (...) {
            remove();
            throw;
        }
    }
    ~Draft() {
        catalogue_.reset();
        remove();
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    const Catalogue& catalogue() const { return *catalogue_; }

    void finish() {
        takeLogOver();
        catalogue_.reset();
        requireFree();
        std::error_code failure;
        fs::rename(path_, output_, failure);
        if (failure)
            throw CatalogueError(base::displayName(output_) +
                                 ": cannot be written: " + failure.message());
    }

private:
    /** A log that another catalogue of the name left behind would be taken for one of this. */
    void requireFree() const {
        std::error_code failure;
        for (const char* ending : {"", "-wal", "-journal"}) {
            if (fs::exists(output_ + ending, failure))
                throw CatalogueError(base::displayName(output_ + ending) + ": is there already");
        }
    }

    /** Closing would do it as well, but does not say when the disk has no room for it. */
    void takeLogOver() {
        guarded(output_, [&] {
            SQLite::Statement statement(catalogue_->database(), "PRAGMA wal_checkpoint(TRUNCATE)");
            const bool isDone = statement.executeStep() && statement.getColumn(0).getInt() == 0;
            if (!isDone)
                throw CatalogueError(base::displayName(path_) +
                                     ": is being read by another program");
        });
    }

    void remove() const {
        std::error_code ignored;
        for (const char* ending : {"", "-wal", "-shm", "-journal"})
            fs::remove(path_ + ending, ignored);
    }

    std::string output_;
    std::string path_;
    std::optional<Catalogue> catalogue_;
};

class Writer {
public:
    explicit Writer(const Catalogue& catalogue)
        : database_(catalogue.database()), store_(catalogue), batch_(catalogue),
          setTimes_(database_, kSetTimes), addEdit_(database_, kAddEdit),
          addFailure_(database_, kAddFailure) {}

    void put(const CorrectedSound& sound);
    void put(const MergeTrack& track);
    void put(const StoredFailure& failure);
    void finish() {
        batch_.begin();
        database_.exec(kDropOvercome);
        batch_.commit();
    }

private:
    SQLite::Database& database_;
    TrackStore store_;
    WriteBatch batch_;
    SQLite::Statement setTimes_;
    SQLite::Statement addEdit_;
    SQLite::Statement addFailure_;
};

void Writer::put(const MergeTrack& track) {
    batch_.begin();
    const TrackStore::Id id = store_.putTrack(track.results.front().analysed.track);
    // The oldest first: of two of one second the later one counts as newer.
    for (auto result = track.results.rbegin(); result != track.results.rend(); ++result)
        store_.putResult(id, result->analysed.result, result->madeAt, result->askedAt);
    setTimes_.bind(1, id);
    setTimes_.bind(2, track.addedAt);
    bindInteger(setTimes_, 3, track.goneAt);
    execute(setTimes_);
    store_.refresh(id);
    batch_.recordWritten();
}

void Writer::put(const CorrectedSound& sound) {
    batch_.begin();
    for (const StoredEdit& edit : sound.edits) {
        bindBytes(addEdit_, 1, sound.hash);
        addEdit_.bind(2, edit.kind);
        bindReal(addEdit_, 3, edit.value);
        addEdit_.bind(4, edit.madeAt);
        execute(addEdit_);
    }
    batch_.recordWritten();
}

void Writer::put(const StoredFailure& failure) {
    batch_.begin();
    bindBytes(addFailure_, 1, failure.path);
    addFailure_.bind(2, failure.lastAt);
    addFailure_.bind(3, failure.attempts);
    addFailure_.bind(4, failure.kind);
    addFailure_.bind(5, failure.reason);
    addFailure_.bind(6, failure.size);
    addFailure_.bind(7, failure.modifiedNanoseconds);
    bindReal(addFailure_, 8, failure.triedLimit);
    execute(addFailure_);
    batch_.recordWritten();
}

/** The first of the names at which the sources stand; nothing when all are at their end. */
template <class NameOf>
std::optional<std::string> firstName(const Sources& sources, const NameOf& nameOf) {
    std::optional<std::string> first;
    for (const auto& source : sources) {
        const std::optional<std::string> name = nameOf(*source);
        if (name && (!first || *name < *first)) first = name;
    }
    return first;
}

std::optional<std::string> nextHash(const MergeSource& source) {
    if (!source.nextSound()) return std::nullopt;
    return source.nextSound()->hash;
}

std::optional<std::string> nextFailurePath(const MergeSource& source) {
    if (!source.nextFailure()) return std::nullopt;
    return source.nextFailure()->path;
}

/** @return the hashes of the sounds of which corrections were left behind */
std::set<std::string> mergeCorrections(const Sources& sources, Writer& writer) {
    std::set<std::string> conflicts;
    while (const auto hash = firstName(sources, nextHash)) {
        base::Interrupt::check();
        std::vector<std::vector<StoredEdit>> lists;
        for (const auto& source : sources) {
            if (nextHash(*source) != hash) continue;
            lists.push_back(source->nextSound()->edits);
            source->dropSound();
        }
        bool isConflict = false;
        writer.put(CorrectedSound{*hash, joined(lists, isConflict)});
        if (isConflict) conflicts.insert(*hash);
    }
    return conflicts;
}

MergeCounts mergeTracks(const Sources& sources, Writer& writer,
                        const std::set<std::string>& conflicts,
                        const std::function<void(const std::string&)>& conflict) {
    MergeCounts counts;
    const auto pathOf = [](const MergeSource& source) { return source.nextTrack(); };
    while (const auto path = firstName(sources, pathOf)) {
        base::Interrupt::check();
        std::vector<MergeTrack> tracks;
        for (const auto& source : sources) {
            if (source->nextTrack() != path) continue;
            if (auto own = source->takeTrack()) tracks.push_back(std::move(*own));
        }
        if (tracks.empty()) continue;
        const MergeTrack whole = joined(std::move(tracks));
        writer.put(whole);
        ++counts.tracks;
        const AudioHash& hash = whole.results.front().analysed.track.hash;
        if (!conflicts.contains({hash.begin(), hash.end()})) continue;
        ++counts.conflicts;
        conflict(*path);
    }
    return counts;
}

void mergeFailures(const Sources& sources, Writer& writer) {
    while (const auto path = firstName(sources, nextFailurePath)) {
        base::Interrupt::check();
        std::optional<StoredFailure> newest;
        for (const auto& source : sources) {
            if (nextFailurePath(*source) != path) continue;
            newest = std::max(newest, source->nextFailure());
            source->dropFailure();
        }
        writer.put(newest.value());
    }
}

/** @throws CatalogueError when the system does not let so many be open side by side */
void requireFileLimit(std::size_t catalogues) {
    // Each with its log and what it shares with other programs; besides, the new one.
    constexpr std::int64_t kPerCatalogue = 3;
    constexpr std::int64_t kOthers = 32;
    const std::int64_t most = (base::raiseFileLimit() - kOthers) / kPerCatalogue;
    if (static_cast<std::int64_t>(catalogues) <= most) return;
    throw CatalogueError("no more than " + std::to_string(most) +
                         " catalogues can be merged at once here (ulimit -n): merge some of them "
                         "first");
}

}  // namespace

MergeCounts mergeCatalogues(const std::vector<std::string>& inputs, const std::string& output,
                            const std::function<void(const std::string& path)>& conflict) {
    requireFileLimit(inputs.size());
    Sources sources;
    for (const std::string& input : inputs)
        sources.push_back(guarded(input, [&] { return std::make_unique<MergeSource>(input); }));
    Draft draft(output);
    const MergeCounts counts = guarded(output, [&] {
        Writer writer(draft.catalogue());
        // What lists read of a track depends on its corrections.
        const auto conflicts = mergeCorrections(sources, writer);
        const MergeCounts done = mergeTracks(sources, writer, conflicts, conflict);
        mergeFailures(sources, writer);
        writer.finish();
        return done;
    });
    draft.finish();
    return counts;
}

}  // namespace catalogue
