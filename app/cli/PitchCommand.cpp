// SPDX-License-Identifier: MIT
#include "cli/PitchCommand.h"

#include <CLI/CLI.hpp>

#include "analysis/bufferFinders.h"
#include "cli/numberBetween.h"
#include "output/PitchEntry.h"

namespace app {

void PitchCommand::declareOwn(CLI::App& arguments, CLI::Option*) {
    arguments
        .add_option("--mode", options_.mode,
                    "how closely to look: 0 (closest; default) to 4 (quickest)")
        ->check(wholeNumberBetween(kLeastFinderMode, kMostFinderMode))
        ->option_text("MODE");
    arguments.add_flag("--full-rate", options_.isFullRate,
                       "look at the track as it is instead of at a tenth of its rate: slower, and\n"
                       "nearer by a hertz or two");
}

std::unique_ptr<output::ReportEntry> PitchCommand::examine(const std::string& path) {
    const PitchAnalyzer analyzer(options_, tracks().acceptsCutOff());
    const auto analyze = [&](ProgressLine& progress) { return analyzer.analyze(path, progress); };
    return examineBy<output::PitchEntry>(analyze, path);
}

}  // namespace app
