// SPDX-License-Identifier: MIT
#include "cli/ShowCommand.h"

#include <CLI/CLI.hpp>

#include "base/errors.h"
#include "cli/keyNotation.h"
#include "cli/storedTrack.h"
#include "cli/toolVersion.h"
#include "output/JsonReport.h"
#include "output/TextReport.h"

namespace app {

void ShowCommand::declareOwn(CLI::App& arguments) {
    auto* json = arguments.add_flag("--json", asJson_,
                                    "print one JSON document, that of `beatatlas analyze --json`");
    arguments.add_flag("--waves", withWaves_, "with --json: the waveform overviews too")
        ->needs(json);
    addKeyNotation(arguments, keyNotation_)->excludes(json);
}

void ShowCommand::begin(ResultStream& results) {
    const auto write = [&results](std::string_view text) { results.write(text); };
    if (asJson_) {
        writer_ = std::make_unique<output::JsonReport>(write, "beatatlas.analysis", toolVersion());
    } else {
        writer_ = std::make_unique<output::TextReport>(write);
    }
    writer_->begin();
}

void ShowCommand::handle(const catalogue::Catalogue& catalogue, const std::string& file,
                         ResultStream& /*results*/) {
    catalogue::TrackStore store(catalogue);
    const auto track = findStored(store, file);
    if (!track) throw base::TrackError("is not in the catalogue");
    StoredTrack stored = readStored(catalogue, *track);
    stored.report.path = file;
    stored.report.keyNotation = keyNotation_;
    writer_->add(output::StoredEntry(std::move(stored.report), std::move(stored.note), withWaves_));
}

}  // namespace app
