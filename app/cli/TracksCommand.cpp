// SPDX-License-Identifier: MIT
#include "cli/TracksCommand.h"

#include <CLI/CLI.hpp>

#include "cli/bracketGuard.h"
#include "io/Interrupt.h"
#include "report/JsonReport.h"
#include "report/TextReport.h"

namespace app {

void TracksCommand::declare(CLI::App& arguments) {
    arguments
        .add_option("FILE", paths_,
                    "tracks of any common audio format, recognised by their content")
        ->required()
        ->option_text("...");
    auto* json = arguments.add_flag("--json", asJson_, "print one JSON document for programs");
    declareOwn(arguments, json);
    tracks_.declare(arguments);
}

ExitCode TracksCommand::run(ResultStream& results) {
    settleOwn();
    tracks_.settle();
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

std::unique_ptr<ReportWriter> TracksCommand::makeWriter(ResultStream& results) const {
    if (asJson_) return std::make_unique<JsonReport>(results, documentFormat());
    return std::make_unique<TextReport>(results);
}

bool TracksCommand::addTracks(ReportWriter& writer) {
    bool allDone = true;
    for (const std::string& argument : paths_) {
        const std::string path = unguarded(argument);
        if (const auto entry = examine(path)) {
            writer.add(*entry);
        } else {
            allDone = false;
            writer.addFailure(path, tracks_.failure());
        }
    }
    return allDone;
}

}  // namespace app
