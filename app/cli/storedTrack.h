// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "catalogue/TrackStore.h"
#include "catalogue/correction/edits.h"
#include "output/StoredEntry.h"

namespace app {

/** The names by which a file that was named on the command line may be in a catalogue, the likelier
 *  first: its absolute path, and the same with links followed. */
std::vector<std::string> catalogueNames(const std::string& file);

/** The track of a file; nothing when the catalogue has none. */
std::optional<catalogue::TrackStore::Id> findStored(catalogue::TrackStore& store,
                                                    const std::string& file);

/** What a correction says, for people: "doubled", "128.00 BPM", "a bar begins at 0:12.50". */
std::string correctionText(const catalogue::Edit& edit);

/** A track with its corrections as the formats take it. */
struct StoredTrack {
    output::TrackReport report;
    output::StoredNote note;
};

/** @throws DamagedRecord when what is stored is damaged or has gone; CatalogueError */
StoredTrack readStored(const catalogue::Catalogue& catalogue, catalogue::TrackStore::Id track);

}  // namespace app
