// SPDX-License-Identifier: MIT
#include "cli/AnalyzeCommand.h"

#include <CLI/CLI.hpp>

#include "report/TrackEntry.h"

namespace app {

void AnalyzeCommand::declareOwn(CLI::App& arguments, CLI::Option* json) {
    arguments.add_flag("--waves", withWaves_, "with --json: the waveform overviews too")
        ->needs(json);
    analysis_.declare(arguments);
}

std::unique_ptr<ReportEntry> AnalyzeCommand::examine(const std::string& path) {
    const TrackAnalyzer analyzer(analysis_.options(), tracks().acceptsCutOff());
    auto report = tracks().attempt(
        path, [&](ProgressLine& progress) { return analyzer.analyze(path, progress); });
    if (!report) return nullptr;
    return std::make_unique<TrackEntry>(std::move(*report), withWaves_);
}

}  // namespace app
