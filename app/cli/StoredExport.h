// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/Catalogue.h"
#include "catalogue/TrackStore.h"
#include "cli/CatalogueArgument.h"
#include "cli/ExportedTrack.h"
#include "cli/ListFilters.h"
#include "output/formats/ExportFormat.h"

namespace CLI {
class Option;
}

namespace app {

/** The tracks of an export whose results come from a catalogue, and the arguments that choose
 *  them. */
class StoredExport {
public:
    void declare(CLI::App& arguments);

    /** Whether the command line asks for tracks of a catalogue. */
    bool isAskedFor() const;

    /** Opens the catalogue. @throws UsageError when arguments do not go together or the catalogue
     *          lacks what they name, CatalogueError */
    void open(const output::ExportFormat& format, bool withWaves);

    /** Of all tracks, in order. Asked for, they stay in memory and the catalogue is not searched
     *  again. @throws CatalogueError */
    std::vector<std::string> paths();

    /** @throws UsageError when the file is a track of the catalogue, the catalogue itself or what
     *          SQLite and a scan keep beside it */
    void refuseToReplace(const std::string& file) const;

    /** Hands over each track as it is stored, with its corrections; one is in memory at a time.
     *  @return whether all were whole
     *  @throws CatalogueError, and what the receiver throws */
    bool handOver(const TrackReceiver& receiver) const;

private:
    struct Chosen {
        catalogue::TrackStore::Id id;
        std::string path;
    };

    bool isOfCatalogue(const std::string& file) const;
    bool handOver(const Chosen& chosen, std::size_t number, const TrackReceiver& receiver) const;
    void refuseWhatIsMissing(const output::TrackReport& report) const;

    std::vector<const CLI::Option*> options_;
    CatalogueArgument argument_;
    ListFilters filters_;
    const output::ExportFormat* format_ = nullptr;
    bool withWaves_ = false;
    std::unique_ptr<catalogue::Catalogue> catalogue_;
    catalogue::TrackQuery query_;
    std::optional<std::vector<Chosen>> chosen_;
};

}  // namespace app
