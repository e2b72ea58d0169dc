// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/Analysed.h"
#include "catalogue/Catalogue.h"

namespace SQLite {
class Statement;
}

namespace catalogue {

/** Reads and writes tracks and results, a row at a time. find(), read() and isGone() throw
 *  CatalogueError where the database fails, all else SQLite::Exception; transactions are the
 *  caller's.
 *
 *  The result that is shown of a track is one for which tempo and key were wanted, if there is one;
 *  of several, the one that a scan asked for last. */
class TrackStore {
public:
    using Id = std::int64_t;

    /** An analysis, when it was made and when a scan last asked for it, seconds since 1970. */
    struct Dated {
        Analysed analysed;
        std::int64_t madeAt = 0;
        std::int64_t askedAt = 0;
    };

    /** What lists read of a track. */
    struct Shown {
        std::optional<double> bpm;
        std::optional<int> key;
        std::optional<double> confidence;
    };

    explicit TrackStore(const Catalogue& catalogue);

    /** The same while a catalogue is being opened. @param path  names it in messages */
    TrackStore(SQLite::Database& database, std::string path);
    ~TrackStore();
    TrackStore(const TrackStore&) = delete;
    TrackStore& operator=(const TrackStore&) = delete;

    std::optional<Id> find(const std::string& path);

    /** Adds the track of that path or brings it up to date. Results of another sound, which the
     *  file held before, are dropped. */
    Id putTrack(const TrackRow& track);

    /** Writes what is known of a track's file anew: where it is, its state, format and tags. */
    void move(Id track, const std::string& path, const FileState& state,
              const base::TrackFormat& format);

    /** Adds a result or replaces the one of the same parameters.
     *  @param madeAt, askedAt  see Dated */
    void putResult(Id track, const ResultRow& result, std::int64_t madeAt, std::int64_t askedAt);

    /** Computes what lists read of the track from the result that is shown and the corrections. Of
     *  a result that is damaged they show what was found. */
    void refresh(Id track);

    /** The same for the track and all others of its sound. */
    void refreshCopies(Id track);

    /** The same for every track that is corrected or has several results: all others show what
     *  their only result says, by whatever rule. */
    void refreshChoices();

    /** The track and the result that is shown; nothing where there is none.
     *  @throws DamagedRecord when what is stored is damaged */
    std::optional<Dated> read(Id track);

    /** The track with each of its results, in no particular order. @throws as read() */
    std::vector<Dated> readAll(Id track);

    /** Whether the file was no longer there when last looked for. */
    bool isGone(Id track) const;

private:
    struct Statements;

    std::int64_t parametersId(const std::string& json);
    void putBlobs(std::int64_t resultId, const ResultRow& result);
    void show(Id track, std::optional<Id> resultId, const Shown& shown);
    void refreshEach(SQLite::Statement& ids);

    SQLite::Database& database_;
    std::string path_;
    std::unique_ptr<Statements> statements_;
};

/** Seconds since 1970, by the system's clock. */
std::int64_t secondsNow();

}  // namespace catalogue
