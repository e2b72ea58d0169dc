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
constexpr const char* kFailures = "SELECT path, last_at, attempts, kind, reason, size, "
                                  "modified_ns, tried_limit FROM failures ORDER BY path";
constexpr const char* kEdits =
    "SELECT audio_hash, kind, value, made_at FROM corrections ORDER BY audio_hash, id";

// Many catalogues may be open at once; each is read from its beginning to its end.
constexpr const char* kSmallCache = "PRAGMA cache_size = -256";

}  // namespace

MergeSource::MergeSource(const std::string& path)
    : catalogue_(path, Catalogue::Access::readBriefly), store_(catalogue_),
      tracks_(catalogue_.database(), kTracks), failures_(catalogue_.database(), kFailures),
      edits_(catalogue_.database(), kEdits) {
    catalogue_.database().exec(kSmallCache);
    stepTrack();
    dropFailure();
    stepEdit();
    dropSound();
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
    });
    stepTrack();
    if (track.results.empty()) return std::nullopt;
    return track;
}

void MergeSource::stepEdit() {
    hasEdit_ = guarded(catalogue_.path(), [&] { return edits_.executeStep(); });
}

void MergeSource::dropSound() {
    nextSound_.reset();
    while (hasEdit_) {
        const std::string hash = edits_.getColumn(0).getString();
        if (!nextSound_) nextSound_ = {hash, {}};
        if (nextSound_->hash != hash) return;
        nextSound_->edits.push_back(
            {edits_.getColumn(1).getString(), realOf(edits_, 2), edits_.getColumn(3).getInt64()});
        stepEdit();
    }
}

void MergeSource::dropFailure() {
    nextFailure_.reset();
    if (!guarded(catalogue_.path(), [&] { return failures_.executeStep(); })) return;
    nextFailure_ = {failures_.getColumn(0).getString(), failures_.getColumn(1).getInt64(),
                    failures_.getColumn(2).getInt64(),  failures_.getColumn(3).getString(),
                    failures_.getColumn(4).getString(), failures_.getColumn(5).getInt64(),
                    failures_.getColumn(6).getInt64(),  realOf(failures_, 7)};
}

}  // namespace catalogue
