// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Statement.h>

#include "catalogue/Catalogue.h"
#include "catalogue/TrackStore.h"

namespace catalogue {

/** An edit as it is stored, known to this program or not. */
struct StoredEdit {
    std::string kind;
    std::optional<double> value;
    std::int64_t madeAt = 0;

    auto operator<=>(const StoredEdit&) const = default;
};

/** The corrections of a sound. */
struct CorrectedSound {
    /** Its audio hash. */
    std::string hash;
    std::vector<StoredEdit> edits;
};

/** All that one catalogue knows of a track. */
struct MergeTrack {
    std::int64_t addedAt = 0;
    std::optional<std::int64_t> goneAt;
    /** At least one. */
    std::vector<TrackStore::Dated> results;
};

struct StoredFailure {
    std::string path;
    std::int64_t lastAt = 0;
    std::int64_t attempts = 0;
    std::string kind;
    std::string reason;
    std::int64_t size = 0;
    std::int64_t modifiedNanoseconds = 0;
    std::optional<double> triedLimit;

    auto operator<=>(const StoredFailure&) const = default;
};

/** One of the catalogues that are merged: its tracks, and its failures, in the order of their
 *  paths, and its corrections in the order of the sounds. */
class MergeSource {
public:
    /** @throws CatalogueError */
    explicit MergeSource(const std::string& path);

    /** Path of the next track; nothing behind the last. */
    const std::optional<std::string>& nextTrack() const { return nextTrack_; }

    /** That track, and on to the one behind it; nothing for a track without a result. */
    std::optional<MergeTrack> takeTrack();

    /** The same for failures. */
    const std::optional<StoredFailure>& nextFailure() const { return nextFailure_; }
    void dropFailure();

    /** The same for corrections. */
    const std::optional<CorrectedSound>& nextSound() const { return nextSound_; }
    void dropSound();

private:
    void stepTrack();
    void stepEdit();

    Catalogue catalogue_;
    TrackStore store_;
    SQLite::Statement tracks_;
    SQLite::Statement failures_;
    SQLite::Statement edits_;
    bool hasEdit_ = false;
    std::optional<std::string> nextTrack_;
    std::optional<StoredFailure> nextFailure_;
    std::optional<CorrectedSound> nextSound_;
};

}  // namespace catalogue
