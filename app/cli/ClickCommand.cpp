// SPDX-License-Identifier: MIT
#include "cli/ClickCommand.h"

#include <algorithm>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/messages.h"
#include "cli/numberBetween.h"
#include "io/fileEnding.h"
#include "media/FileAnalysis.h"
#include "media/OutputFile.h"

namespace app {

namespace {

constexpr double kQuietestDb = -60.0;
constexpr double kLoudestDb = 40.0;

// How the work is shared out on the progress line.
constexpr double kAnalysed = 0.8;

/** @throws UsageError, naming what is possible, when no kind of file has that ending */
media::AudioKind kindOf(const std::string& path) {
    const std::vector<media::AudioKind> kinds = media::audioKinds();
    const auto found = std::find_if(kinds.begin(), kinds.end(), [&](const media::AudioKind& kind) {
        return hasEnding(path, kind.ending);
    });
    if (found != kinds.end()) return *found;
    std::vector<std::string> endings;
    for (const media::AudioKind& kind : kinds) endings.emplace_back(kind.ending);
    throw base::UsageError(fmt::format("the result's name must end in one of {} (--output)",
                                       fmt::join(endings, ", ")));
}

}  // namespace

void ClickCommand::declare(CLI::App& arguments) {
    arguments.add_option("FILE", path_, "a track of any common audio format")
        ->required()
        ->option_text(" ");
    arguments
        .add_option("-o,--output", outputPath_,
                    "the result; its ending says what it becomes: .wav, .flac, .wv, .mp3, .m4a,\n"
                    ".ogg, .oga or .opus")
        ->required()
        ->option_text("OUT");
    arguments
        .add_option("--level", options_.levelDb,
                    "how far a downbeat's click stands above the loudest place of the music:\n"
                    "-60 to 40 dB (default: 0)")
        ->check(numberBetween(kQuietestDb, kLoudestDb))
        ->option_text("DB");
    auto* alone = arguments.add_flag("--only", isAlone_, "the clicks alone, without the music");
    arguments
        .add_flag("--left-right", isApart_, "the music on the left side, the clicks on the right")
        ->excludes(alone);
    analysis_.declare(arguments);
    effort_.declare(arguments);
    tracks_.declare(arguments);
}

ExitCode ClickCommand::run(ResultStream&) {
    analysis_.settle();
    if (analysis_.options().tempo == beatatlas::track::TempoMode::off)
        throw base::UsageError("--tempo off leaves no beats to click on");
    if (isAlone_) options_.place = ClickPlace::alone;
    if (isApart_) options_.place = ClickPlace::apart;
    const std::string path = unguarded(path_);
    const std::string outputPath = unguarded(outputPath_);
    const media::AudioKind kind = kindOf(outputPath);
    tracks_.settle({path});
    media::OutputFile::requireWritable(outputPath);
    if (media::OutputFile::isSameFile(path, outputPath))
        throw base::UsageError("the result would replace the track itself");
    const auto file = tracks_.attempt(
        path, [&](ProgressLine& progress) { return clickTrack(path, outputPath, kind, progress); });
    if (!file) return kExitFailed;
    if (!hasBeats_) printFileWarning(path, "no beats were found: nothing clicks");
    if (!outputWarning_.empty()) printFileWarning(outputPath, outputWarning_);
    return kExitDone;
}

base::TrackSource ClickCommand::clickTrack(const std::string& path, const std::string& outputPath,
                                           const media::AudioKind& kind, ProgressLine& progress) {
    media::FileAnalysis::Options reading = tracks_.reading(path, effort_.effort());
    reading.track = analysis_.options();
    reading.track.wantsKey = false;
    reading.track.wantsWaves = false;
    reading.progress = [&](double done, double seconds) {
        progress.show(done * kAnalysed, seconds);
    };
    double peak = 0.0;
    reading.alongside = [&](const media::StereoBlock& block) { peak = louderPeak(peak, block); };
    media::AnalysedFile analysed = media::FileAnalysis(reading).analyze(path);
    hasBeats_ = !analysed.result.beats.empty();
    ClickTrack track(analysed.result, peak, options_);
    outputWarning_ = track.write(path, outputPath, kind, [&](double done) {
        progress.show(kAnalysed + done * (1.0 - kAnalysed), analysed.result.seconds());
    });
    if (reading.note && !isAlone_ && track.loweredDb() > 0.0)
        reading.note(
            fmt::format("lowered by {:.1f} dB, to leave room for the clicks", track.loweredDb()));
    return std::move(analysed.file);
}

}  // namespace app
