// SPDX-License-Identifier: MIT
#include "cli/AnalyzeCommand.h"

#include <CLI/CLI.hpp>

#include "analysis/analyzeFile.h"
#include "cli/keyNotation.h"
#include "output/TrackEntry.h"

namespace app {

void AnalyzeCommand::declareOwn(CLI::App& arguments, CLI::Option* json) {
    arguments.add_flag("--waves", withWaves_, "with --json: the waveform overviews too")
        ->needs(json);
    addKeyNotation(arguments, keyNotation_)->excludes(json);
    origin_.declare(arguments);
    analysis_.declare(arguments);
    effort_.declare(arguments);
}

std::unique_ptr<output::ReportEntry> AnalyzeCommand::examine(const std::string& path) {
    media::FileAnalysis::Options reading = tracks().reading(path, effort_.effort());
    reading.track = analysis_.options();
    // The text does not show it, and it takes a pass of its own.
    reading.track.wantsSessionKey = isJson() && reading.track.wantsKey;
    const auto analyze = [&](ProgressLine& progress) {
        output::TrackReport report = analyzeFile(path, reading, progress);
        report.keyNotation = keyNotation_;
        countFrom(report, origin_.origin());
        return report;
    };
    return examineBy<output::TrackEntry>(analyze, path, withWaves_);
}

}  // namespace app
