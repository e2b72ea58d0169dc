// SPDX-License-Identifier: MIT
#include "cli/TracksCommand.h"

#include <algorithm>

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
    std::transform(paths_.begin(), paths_.end(), paths_.begin(), unguarded);
    tracks_.settle(paths_);
    const auto writer = makeWriter(results);
    writer->begin();
    bool allDone = false;
    try {
        allDone = addTracks(*writer);
    } catch (const base::Interrupted&) {
        writer->end();
        tracks_.tellOutcome();
        throw;
    }
    writer->end();
    tracks_.tellOutcome();
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
    for (const std::string& path : paths_) {
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
