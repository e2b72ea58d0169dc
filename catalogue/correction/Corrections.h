// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "catalogue/Catalogue.h"
#include "catalogue/correction/edits.h"

namespace catalogue {

/** The corrections of tracks as the catalogue keeps them, in the order in which they were made. No
 *  analysis writes them.
 *
 *  They belong to the sound of a track, by its hash: copies of a file have them in common, and
 *  another song under the same name has none of them. */
class Corrections {
public:
    explicit Corrections(const Catalogue& catalogue) : catalogue_(catalogue) {}

    std::vector<Edit> of(std::int64_t trackId) const;

    /** What lists read of the track and its copies changes with it, as with undo().
     *  @throws CatalogueError */
    void add(std::int64_t trackId, const Edit& edit);

    /** Takes the last edit back; nothing when there is none. */
    std::optional<Edit> undo(std::int64_t trackId);

private:
    const Catalogue& catalogue_;
};

/** Deletes the corrections of a track's sound, unless another track has that sound too.
 *  @throws SQLite::Exception */
void dropCorrections(SQLite::Database& database, std::int64_t trackId);

/** The same as Corrections::of() inside a transaction. @throws SQLite::Exception */
std::vector<Edit> editsOf(SQLite::Database& database, std::int64_t trackId);

}  // namespace catalogue
