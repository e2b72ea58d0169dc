// SPDX-License-Identifier: MIT
#include "cli/DrawCommand.h"

#include <CLI/CLI.hpp>

#include "cli/bracketGuard.h"
#include "cli/numberBetween.h"
#include "io/OutputFile.h"
#include "io/errors.h"
#include "picture/PictureFile.h"

namespace app {

void DrawCommand::declare(CLI::App& arguments) {
    arguments.add_option("FILE", path_, "a track of any common audio format")
        ->required()
        ->option_text(" ");
    arguments
        .add_option("-o,--output", outputPath_, "the picture: a name that ends in .png or .svg")
        ->required()
        ->option_text("OUT");
    arguments
        .add_option("--from", picture_.zoomFromSeconds,
                    "where the zoomed stretch begins (default: at the loudest place)")
        ->check(numberBetween(0.0, kLatestZoomSeconds))
        ->option_text("SECONDS");
    arguments
        .add_option("--span", picture_.zoomSpanSeconds,
                    "how long the zoomed stretch is (default: 12)")
        ->check(numberBetween(kShortestZoomSeconds, kLongestZoomSeconds))
        ->option_text("SECONDS");
    arguments
        .add_option("--width", picture_.widthPixels,
                    "width of the picture in pixels (default: 1600)")
        ->check(numberBetween(kNarrowestPicture, kWidestPicture))
        ->option_text("PIXELS");
    analysis_.declare(arguments);
    tracks_.declare(arguments);
}

ExitCode DrawCommand::run(ResultStream&) {
    analysis_.settle();
    tracks_.settle();
    const std::string path = unguarded(path_);
    const std::string outputPath = unguarded(outputPath_);
    const PictureFormat format = pictureFormatOf(outputPath);
    OutputFile::requireWritable(outputPath);
    if (OutputFile::isSameFile(path, outputPath))
        throw UsageError("the picture would replace the track itself");
    const TrackAnalyzer analyzer(analysis_.options(), tracks_.acceptsCutOff());
    const auto report = tracks_.attempt(
        path, [&](ProgressLine& progress) { return analyzer.analyze(path, progress); });
    if (!report) return kExitFailed;
    writePicture(*report, picture_, format, outputPath);
    return kExitDone;
}

}  // namespace app
