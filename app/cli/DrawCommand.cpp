// SPDX-License-Identifier: MIT
#include "cli/DrawCommand.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "analysis/analyzeFile.h"
#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/keyNotation.h"
#include "cli/messages.h"
#include "cli/numberBetween.h"
#include "cli/timeArgument.h"
#include "io/fileEnding.h"
#include "media/OutputFile.h"
#include "output/picture/PictureFile.h"
#include "output/textFormat.h"

namespace app {

namespace {

/** @throws UsageError when the name ends in neither .png nor .svg */
output::PictureFormat pictureFormatOf(const std::string& path) {
    if (hasEnding(path, ".png")) return output::PictureFormat::png;
    if (hasEnding(path, ".svg")) return output::PictureFormat::svg;
    throw base::UsageError("the picture's name must end in .png or .svg (--output)");
}

}  // namespace

void DrawCommand::refuseBeyondEnd(double trackSeconds) const {
    const auto& from = picture_.zoomFromSeconds;
    if (!from || *from < trackSeconds) return;
    throw base::TrackError(fmt::format("ends at {}, before --from {}",
                                       output::clockTime(trackSeconds), output::clockTime(*from)));
}

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
    addKeyNotation(arguments, keyNotation_);
    analysis_.declare(arguments);
    effort_.declare(arguments);
    tracks_.declare(arguments);
}

ExitCode DrawCommand::run(ResultStream&) {
    analysis_.settle();
    const std::string path = unguarded(path_);
    tracks_.settle({path});
    const std::string outputPath = unguarded(outputPath_);
    const output::PictureFormat format = pictureFormatOf(outputPath);
    media::OutputFile::requireWritable(outputPath);
    if (media::OutputFile::isSameFile(path, outputPath))
        throw base::UsageError("the picture would replace the track itself");
    media::FileAnalysis::Options reading = tracks_.reading(path, effort_.effort());
    reading.track = analysis_.options();
    auto report = tracks_.attempt(path, [&](ProgressLine& progress) {
        auto analysed = analyzeFile(path, reading, progress);
        refuseBeyondEnd(analysed.analysis.seconds());
        return analysed;
    });
    if (!report) return kExitFailed;
    report->keyNotation = keyNotation_;
    media::OutputFile picture(outputPath);
    output::writePicture(*report, picture_, format, [&](const void* bytes, std::size_t count) {
        picture.write(bytes, count);
    });
    const std::string warning = picture.commit();
    if (!warning.empty()) printFileWarning(outputPath, warning);
    return kExitDone;
}

}  // namespace app
