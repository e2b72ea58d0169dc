// SPDX-License-Identifier: MIT
#include "cli/DrawCommand.h"

#include <map>

#include <CLI/CLI.hpp>

#include "analysis/analyzeFile.h"
#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/keyNotation.h"
#include "cli/messages.h"
#include "cli/numberBetween.h"
#include "cli/oneOf.h"
#include "media/OutputFile.h"
#include "output/picture/PictureFile.h"

namespace app {

namespace {

std::map<std::string, output::ThemeName> themes() {
    return {{"dark", output::ThemeName::dark}, {"light", output::ThemeName::light}};
}

}  // namespace

void DrawCommand::declare(CLI::App& arguments) {
    arguments.add_option("FILE", paths_, "tracks of any common audio format")
        ->required()
        ->option_text("...");
    places_.declare(arguments);
    arguments
        .add_option("--from", picture_.zoomFromSeconds,
                    "where the zoomed stretch begins (default: at the loudest place)")
        ->check(numberBetween(0.0, output::kLatestZoomSeconds))
        ->option_text("SECONDS");
    arguments
        .add_option("--span", picture_.zoomSpanSeconds,
                    "how long the zoomed stretch is (default: 12)")
        ->check(numberBetween(output::kShortestZoomSeconds, output::kLongestZoomSeconds))
        ->option_text("SECONDS");
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
    tracks_.settle();
    for (std::string& path : paths_) path = unguarded(path);
    places_.settle(paths_);
    bool allDone = true;
    for (std::size_t i = 0; i < paths_.size(); ++i) allDone = drawTrack(i, paths_[i]) && allDone;
    return allDone ? kExitDone : kExitFailed;
}

bool DrawCommand::drawTrack(std::size_t track, const std::string& path) {
    try {
        places_.requireFree(track);
    } catch (const base::OutputError& error) {
        printError(error.what());
        return false;
    }
    media::FileAnalysis::Options reading = tracks_.reading(path, effort_.effort());
    reading.track = analysis_.options();
    const auto report = tracks_.attempt(path, [&](ProgressLine& progress) {
        output::TrackReport found = analyzeFile(path, reading, progress);
        found.keyNotation = keyNotation_;
        write(found, places_.path(track));
        return found;
    });
    return report.has_value();
}

void DrawCommand::write(const output::TrackReport& report, const std::string& path) const {
    media::OutputFile picture(path);
    output::writePicture(
        report, picture_, places_.format(),
        [&](const void* bytes, std::size_t count) { picture.write(bytes, count); });
    picture.commit();
}

}  // namespace app
