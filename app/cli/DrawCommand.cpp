// SPDX-License-Identifier: MIT
#include "cli/DrawCommand.h"

#include <map>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "analysis/analyzeFile.h"
#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/keyNotation.h"
#include "cli/messages.h"
#include "cli/numberBetween.h"
#include "cli/oneOf.h"
#include "cli/timeArgument.h"
#include "media/OutputFile.h"
#include "output/picture/PictureFile.h"
#include "output/textFormat.h"

namespace app {

namespace {

std::map<std::string, output::ThemeName> themes() {
    return {{"dark", output::ThemeName::dark}, {"light", output::ThemeName::light}};
}

}  // namespace

void DrawCommand::refuseBeyondEnd(double trackSeconds) const {
    const auto& from = picture_.zoomFromSeconds;
    if (!from || *from < trackSeconds) return;
    throw base::TrackError(fmt::format("ends at {}, before --from {}",
                                       output::clockTime(trackSeconds), output::clockTime(*from)));
}

void DrawCommand::declare(CLI::App& arguments) {
    arguments.add_option("FILE", paths_, "tracks of any common audio format")
        ->required()
        ->option_text("...");
    places_.declare(arguments);
    arguments
        .add_option("--from", picture_.zoomFromSeconds,
                    "where the zoomed stretch begins (default: at the loudest place)")
        ->transform(timeBetween(0.0, output::kLatestZoomSeconds))
        ->option_text("TIME");
    arguments
        .add_option("--span", picture_.zoomSpanSeconds,
                    "how long the zoomed stretch is (default: 12)")
        ->transform(timeBetween(output::kShortestZoomSeconds, output::kLongestZoomSeconds))
        ->option_text("TIME");
    arguments
        .add_option("--width", picture_.widthPixels,
                    "width of the picture in pixels (default: 1600)")
        ->check(numberBetween(output::kNarrowestPicture, output::kWidestPicture))
        ->option_text("PIXELS");
    arguments.add_option("--theme", picture_.theme, "dark (default) or light")
        ->transform(oneOf(themes()))
        ->option_text("NAME");
    addKeyNotation(arguments, keyNotation_);
    analysis_.declare(arguments);
    effort_.declare(arguments);
    tracks_.declare(arguments);
}

ExitCode DrawCommand::run(ResultStream&) {
    analysis_.settle();
    for (std::string& path : paths_) path = unguarded(path);
    tracks_.settle(paths_);
    places_.settle(paths_);
    bool allDone = true;
    for (std::size_t i = 0; i < paths_.size(); ++i) allDone = drawTrack(i, paths_[i]) && allDone;
    tracks_.tellOutcome();
    return allDone ? kExitDone : kExitFailed;
}

bool DrawCommand::drawTrack(std::size_t track, const std::string& path) {
    media::FileAnalysis::Options reading = tracks_.reading(path, effort_.effort());
    reading.track = analysis_.options();
    std::string warning;
    const auto report = tracks_.attempt(path, [&](ProgressLine& progress) {
        places_.places().requireFree(track);
        output::TrackReport found = analyzeFile(path, reading, progress);
        refuseBeyondEnd(found.analysis.seconds());
        found.keyNotation = keyNotation_;
        warning = write(found, places_.places().path(track));
        return found;
    });
    if (!warning.empty()) printFileWarning(places_.places().path(track), warning);
    return report.has_value();
}

std::string DrawCommand::write(const output::TrackReport& report, const std::string& path) const {
    media::OutputFile picture(path);
    output::writePicture(
        report, picture_, places_.format(),
        [&](const void* bytes, std::size_t count) { picture.write(bytes, count); });
    return picture.commit();
}

}  // namespace app
