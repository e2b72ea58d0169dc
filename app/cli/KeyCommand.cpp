// SPDX-License-Identifier: MIT
#include "cli/KeyCommand.h"

#include <CLI/CLI.hpp>

#include "analysis/bufferFinders.h"
#include "cli/keyNotation.h"
#include "cli/numberBetween.h"
#include "output/KeyEntry.h"

namespace app {

namespace {

// From a whole tone below 440 Hz, the pitch of French baroque music, to a whole tone above.
constexpr double kLowestPitchHz = 390.0;
constexpr double kHighestPitchHz = 495.0;

}  // namespace

void KeyCommand::declareOwn(CLI::App& arguments, CLI::Option* json) {
    arguments
        .add_option("--pitch", options_.pitchHz,
                    "what A4 is tuned to (default: found as by `beatatlas pitch`)")
        ->check(numberBetween(kLowestPitchHz, kHighestPitchHz))
        ->option_text("HZ");
    arguments
        .add_option("--mode", options_.mode,
                    "weights by which the buffer's key is scored, 0 (default) to 4")
        ->check(wholeNumberBetween(kLeastFinderMode, kMostFinderMode))
        ->option_text("MODE");
    addKeyNotation(arguments, keyNotation_)->excludes(json);
    effort_.declare(arguments);
}

std::unique_ptr<output::ReportEntry> KeyCommand::examine(const std::string& path) {
    const KeyAnalyzer analyzer(options_, tracks().reading(path, effort_.effort()));
    const auto analyze = [&](ProgressLine& progress) {
        output::KeyReport report = analyzer.analyze(path, progress);
        report.keyNotation = keyNotation_;
        return report;
    };
    return examineBy<output::KeyEntry>(analyze, path);
}

}  // namespace app
