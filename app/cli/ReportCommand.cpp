// SPDX-License-Identifier: MIT
#include "cli/ReportCommand.h"

#include <CLI/CLI.hpp>

#include "analysis/analyzeFile.h"
#include "cli/bracketGuard.h"
#include "cli/keyNotation.h"
#include "cli/messages.h"
#include "media/OutputFile.h"

namespace app {

void ReportCommand::declare(CLI::App& arguments) {
    arguments.add_option("FILE", paths_, "tracks of any common audio format")
        ->required()
        ->option_text("...");
    places_.declare(arguments);
    addKeyNotation(arguments, keyNotation_);
    analysis_.declare(arguments);
    effort_.declare(arguments);
    tracks_.declare(arguments);
}

ExitCode ReportCommand::run(ResultStream& results) {
    analysis_.settle();
    for (std::string& path : paths_) path = unguarded(path);
    tracks_.settle(paths_);
    places_.settle(paths_);
    bool allDone = true;
    for (std::size_t i = 0; i < paths_.size(); ++i) allDone = reportTrack(i, results) && allDone;
    tracks_.tellOutcome();
    return allDone ? kExitDone : kExitFailed;
}

bool ReportCommand::reportTrack(std::size_t track, ResultStream& results) {
    const std::string& path = paths_[track];
    media::FileAnalysis::Options reading = tracks_.reading(path, effort_.effort());
    reading.track = analysis_.options();
    std::string warning;
    const auto report = tracks_.attempt(path, [&](ProgressLine& progress) {
        if (!places_.isStandardOutput()) places_.places().requireFree(track);
        output::TrackReport found = analyzeFile(path, reading, progress);
        found.keyNotation = keyNotation_;
        warning = write(found, track, results);
        return found;
    });
    if (!warning.empty()) printFileWarning(places_.places().path(track), warning);
    return report.has_value();
}

std::string ReportCommand::write(const output::TrackReport& report, std::size_t track,
                                 ResultStream& results) const {
    if (places_.isStandardOutput()) {
        output::writeTrackPage(report, {}, [&](std::string_view text) { results.write(text); });
        return {};
    }
    media::OutputFile page(places_.places().path(track));
    output::writeTrackPage(report, {},
                           [&](std::string_view text) { page.write(text.data(), text.size()); });
    return page.commit();
}

}  // namespace app
