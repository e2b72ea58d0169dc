// SPDX-License-Identifier: MIT
#include "cli/AnalyzeCommand.h"

#include <CLI/CLI.hpp>

#include "analysis/TrackAnalyzer.h"
#include "output/TrackEntry.h"

namespace app {

void AnalyzeCommand::declareOwn(CLI::App& arguments, CLI::Option* json) {
    arguments.add_flag("--waves", withWaves_, "with --json: the waveform overviews too")
        ->needs(json);
    analysis_.declare(arguments);
}

std::unique_ptr<output::ReportEntry> AnalyzeCommand::examine(const std::string& path) {
    const TrackAnalyzer analyzer(analysis_.options(), tracks().acceptsCutOff());
    return examineBy<output::TrackEntry>(analyzer, path, withWaves_);
}

}  // namespace app
