// SPDX-License-Identifier: MIT
#include "cli/PitchCommand.h"

#include <CLI/CLI.hpp>

#include "analysis/bufferFinders.h"
#include "cli/numberBetween.h"
#include "report/PitchEntry.h"

namespace app {

void PitchCommand::declareOwn(CLI::App& arguments, CLI::Option*) {
    arguments
        .add_option("--mode", mode_,
                    "how closely to look: 0 (closest; default), 1 and 2 (a third quicker or only\n"
                    "half of the candidates at first, by the track's length), 3 and 4 (quickest)")
        ->check(wholeNumberBetween(kLeastFinderMode, kMostFinderMode))
        ->option_text("MODE");
}

std::unique_ptr<ReportEntry> PitchCommand::examine(const std::string& path) {
    const PitchAnalyzer analyzer(mode_, tracks().acceptsCutOff());
    auto report = tracks().attempt(
        path, [&](ProgressLine& progress) { return analyzer.analyze(path, progress); });
    if (!report) return nullptr;
    return std::make_unique<PitchEntry>(std::move(*report));
}

}  // namespace app
