// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/Analysed.h"
#include "catalogue/Catalogue.h"

namespace catalogue {

/** Reads and writes tracks and results, a row at a time. find(), read() and isGone() throw
 *  CatalogueError where the database fails, all else SQLite::Exception; transactions are the
 *  caller's. */
class TrackStore {
public:
    using Id = std::int64_t;

    /** An analysis and when it was made, seconds since 1970. */
    struct Dated {
        Analysed analysed;
        std::int64_t madeAt = 0;
    };

    explicit TrackStore(const Catalogue& catalogue);
    ~TrackStore();
    TrackStore(const TrackStore&) = delete;
    TrackStore& operator=(const TrackStore&) = delete;

    std::optional<Id> find(const std::string& path);

    /** Adds the track of that path or brings it up to date. Results of another sound, which the
     *  file held before, are dropped. */
    Id putTrack(const TrackRow& track);

    /** Adds a result or replaces the one of the same parameters.
     *  @param madeAt  seconds since 1970 */
    void putResult(Id track, const ResultRow& result, std::int64_t madeAt);

    /** Computes what lists read of the track from its newest result and its corrections. */
    void refresh(Id track);

    /** The track and its newest result; nothing where there is none.
     *  @throws DamagedRecord when what is stored is damaged */
    std::optional<Dated> read(Id track);

    /** The track with each of its results, the newest first. @throws as read() */
    std::vector<Dated> readAll(Id track);

    /** Whether the file was no longer there when last looked for. */
    bool isGone(Id track) const;

private:
    struct Statements;

    std::int64_t parametersId(const std::string& json);
    void putBlobs(std::int64_t resultId, const ResultRow& result);

    const Catalogue& catalogue_;
    std::unique_ptr<Statements> statements_;
};

/** Seconds since 1970, by the system's clock. */
std::int64_t secondsNow();

}  // namespace catalogue
