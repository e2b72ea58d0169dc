// SPDX-License-Identifier: MIT
#include "cli/ReportCommand.h"

#include <CLI/CLI.hpp>

#include "analysis/analyzeFile.h"
#include "cli/bracketGuard.h"
#include "cli/keyNotation.h"
#include "cli/memorySize.h"
#include "cli/messages.h"
#include "media/OutputFile.h"
#include "page/pageSound.h"

namespace app {

namespace {

constexpr const char* kUsualEmbedding = "20M";
constexpr const char* kStandardInput = "-";

// How the work is shared out on the progress line.
constexpr double kAnalysisShare = 0.8;

}  // namespace

void ReportCommand::declare(CLI::App& arguments) {
    arguments.add_option("FILE", paths_, "tracks of any common audio format")
        ->required()
        ->option_text("...");
    places_.declare(arguments);
    embedding_ = kUsualEmbedding;
    auto* size = arguments.add_option(
        "--embed", embedding_,
        "put the compressed sound into the page while it takes no more than this\n"
        "(default: 20M); beyond that the page refers to the track's file");
    size->check(CLI::Validator(requireMemorySize, ""))->option_text("SIZE");
    arguments.add_flag("--no-embed", embedsNothing_, "no sound in the page: it refers to the file")
        ->excludes(size);
    addKeyNotation(arguments, keyNotation_);
    analysis_.declare(arguments);
    effort_.declare(arguments);
    tracks_.declare(arguments);
}

ExitCode ReportCommand::run(ResultStream& results) {
    analysis_.settle();
    mostEmbeddedBytes_ = embedsNothing_ ? 0 : parseMemorySize(embedding_).value_or(0);
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
    const double analysed = embedsNothing_ ? 1.0 : kAnalysisShare;
    std::string warning;
    output::PageSound sound;
    const auto report = tracks_.attempt(path, [&](ProgressLine& progress) {
        if (!places_.isStandardOutput()) places_.places().requireFree(track);
        output::TrackReport found = analyzeFile(path, reading, progress, analysed);
        found.keyNotation = keyNotation_;
        sound = soundFor(found, track, progress);
        warning = write(found, sound, track, results);
        return found;
    });
    if (!report) return false;
    if (!warning.empty()) printFileWarning(pagePath(track), warning);
    if (!embedsNothing_ && !sound.bytes)
        printFileWarning(path, sound.address
                                   ? "its sound is not in the page, which refers to the file"
                                   : "the page has no sound: there is no file to refer to");
    return true;
}

output::PageSound ReportCommand::soundFor(const output::TrackReport& report, std::size_t track,
                                          ProgressLine& progress) const {
    const std::string& path = paths_[track];
    output::PageSound sound;
    sound.bytes = encodedSound(path, report.analysis, mostEmbeddedBytes_, [&](double done) {
        progress.show(kAnalysisShare + done * (1.0 - kAnalysisShare), report.analysis.seconds());
    });
    if (!sound.bytes && path != kStandardInput) sound.address = addressFrom(pagePath(track), path);
    return sound;
}

/** Empty for standard output. */
std::string ReportCommand::pagePath(std::size_t track) const {
    return places_.isStandardOutput() ? std::string() : places_.places().path(track);
}

std::string ReportCommand::write(const output::TrackReport& report, const output::PageSound& sound,
                                 std::size_t track, ResultStream& results) const {
    if (places_.isStandardOutput()) {
        output::writeTrackPage(report, sound, [&](std::string_view text) { results.write(text); });
        return {};
    }
    media::OutputFile page(pagePath(track));
    output::writeTrackPage(report, sound,
                           [&](std::string_view text) { page.write(text.data(), text.size()); });
    return page.commit();
}

}  // namespace app
