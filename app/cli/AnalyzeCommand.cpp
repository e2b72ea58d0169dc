// SPDX-License-Identifier: MIT
#include "cli/AnalyzeCommand.h"

#include <CLI/CLI.hpp>

#include "cli/bracketGuard.h"
#include "io/Interrupt.h"
#include "report/JsonReport.h"
#include "report/TextReport.h"

namespace app {

void AnalyzeCommand::declare(CLI::App& arguments) {
    arguments
        .add_option("FILE", paths_,
                    "tracks of any common audio format, recognised by their content")
        ->required()
        ->option_text("...");
    auto* json = arguments.add_flag("--json", asJson_, "print one JSON document for programs");
    arguments.add_flag("--waves", withWaves_, "with --json: the waveform overviews too")
        ->needs(json);
    analysis_.declare(arguments);
}

ExitCode AnalyzeCommand::run(ResultStream& results) {
    analysis_.settle();
    const auto writer = makeWriter(results);
    writer->begin();
    bool allDone = false;
    try {
        allDone = addTracks(*writer);
    } catch (const Interrupted&) {
        writer->end();
        throw;
    }
    writer->end();
    return allDone ? kExitDone : kExitFailed;
}

std::unique_ptr<ReportWriter> AnalyzeCommand::makeWriter(ResultStream& results) const {
    if (asJson_) return std::make_unique<JsonReport>(results, withWaves_);
    return std::make_unique<TextReport>(results);
}

bool AnalyzeCommand::addTracks(ReportWriter& writer) {
    bool allDone = true;
    for (const std::string& argument : paths_) {
        const std::string path = unguarded(argument);
        if (const auto report = analysis_.analyze(path)) {
            writer.add(*report);
        } else {
            allDone = false;
            writer.addFailure(path, analysis_.failure());
        }
    }
    return allDone;
}

}  // namespace app
