// SPDX-License-Identifier: MIT
#include "catalogue/merge/MergeSource.h"

#include <utility>

#include <SQLiteCpp/Database.h>

#include "base/displayName.h"
#include "catalogue/CatalogueError.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

constexpr const char* kTracks = "SELECT id, path, added_at, gone_at FROM tracks ORDER BY path";
constexpr const char* kFailures = "SELECT path, last_at, attempts, kind, reason, size, modified_ns "
                                  "FROM failures ORDER BY path";
constexpr const char* kEdits =
    "SELECT kind, value, made_at FROM corrections WHERE track_id = ?1 ORDER BY id";

}  // namespace

MergeSource::MergeSource(const std::string& path)
    : catalogue_(path, Catalogue::Access::read), store_(catalogue_),
      tracks_(catalogue_.database(), kTracks), failures_(catalogue_.database(), kFailures) {
    stepTrack();
    dropFailure();
}

void MergeSource::stepTrack() {
    nextTrack_.reset();
    if (guarded(catalogue_.path(), [&] { return tracks_.executeStep(); }))
        nextTrack_ = tracks_.getColumn(1).getString();
}

std::optional<MergeTrack> MergeSource::takeTrack() {
    MergeTrack track;
    guarded(catalogue_.path(), [&] {
        const std::int64_t id = tracks_.getColumn(0).getInt64();
        track.addedAt = tracks_.getColumn(2).getInt64();
        if (!tracks_.isColumnNull(3)) track.goneAt = tracks_.getColumn(3).getInt64();
        try {
            track.results = store_.readAll(id);
        } catch (const DamagedRecord& damage) {
            throw CatalogueError(base::displayName(catalogue_.path()) + ": " +
                                 base::displayName(nextTrack_.value()) + ": " + damage.what());
        }
        track.edits = editsOf(id);
    });
    stepTrack();
    if (track.results.empty()) return std::nullopt;
    return track;
}

std::vector<StoredEdit> MergeSource::editsOf(std::int64_t track) {
    std::vector<StoredEdit> edits;
    SQLite::Statement select(catalogue_.database(), kEdits);
    select.bind(1, track);
    while (select.executeStep())
        edits.push_back(
            {select.getColumn(0).getString(), realOf(select, 1), select.getColumn(2).getInt64()});
    return edits;
}

void MergeSource::dropFailure() {
    nextFailure_.reset();
    if (!guarded(catalogue_.path(), [&] { return failures_.executeStep(); })) return;
    nextFailure_ = {failures_.getColumn(0).getString(), failures_.getColumn(1).getInt64(),
                    failures_.getColumn(2).getInt64(),  failures_.getColumn(3).getString(),
                    failures_.getColumn(4).getString(), failures_.getColumn(5).getInt64(),
                    failures_.getColumn(6).getInt64()};
}

}  // namespace catalogue
