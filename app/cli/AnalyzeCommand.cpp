// SPDX-License-Identifier: MIT
#include "cli/AnalyzeCommand.h"

#include <CLI/CLI.hpp>

#include "analysis/analyzeFile.h"
#include "output/TrackEntry.h"

namespace app {

void AnalyzeCommand::declareOwn(CLI::App& arguments, CLI::Option* json) {
    arguments.add_flag("--waves", withWaves_, "with --json: the waveform overviews too")
        ->needs(json);
    analysis_.declare(arguments);
    effort_.declare(arguments);
}

std::unique_ptr<output::ReportEntry> AnalyzeCommand::examine(const std::string& path) {
    media::FileAnalysis::Options reading = tracks().reading(path, effort_.effort());
    reading.track = analysis_.options();
    const auto analyze = [&](ProgressLine& progress) {
        return analyzeFile(path, reading, progress);
    };
    return examineBy<output::TrackEntry>(analyze, path, withWaves_);
}

}  // namespace app
