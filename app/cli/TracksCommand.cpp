// SPDX-License-Identifier: MIT
#include "cli/TracksCommand.h"

#include <CLI/CLI.hpp>

#include "base/Interrupt.h"
#include "cli/bracketGuard.h"
#include "cli/toolVersion.h"
#include "output/JsonReport.h"
#include "output/TextReport.h"

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
    } catch (const base::Interrupted&) {
        writer->end();
        throw;
    }
    writer->end();
    return allDone ? kExitDone : kExitFailed;
}

std::unique_ptr<output::ReportWriter> TracksCommand::makeWriter(ResultStream& results) const {
    const auto write = [&results](std::string_view text) { results.write(text); };
    if (asJson_)
        return std::make_unique<output::JsonReport>(write, documentFormat(), toolVersion());
    return std::make_unique<output::TextReport>(write);
}

bool TracksCommand::addTracks(output::ReportWriter& writer) {
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
