// SPDX-License-Identifier: MIT
#include "cli/AnalysisArguments.h"

#include <map>
#include <new>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "audio/ffmpeg.h"
#include "cli/messages.h"
#include "cli/numberBetween.h"
#include "io/ProgressLine.h"
#include "io/StandardStreams.h"
#include "io/errors.h"
#include "report/textFormat.h"

namespace app {

namespace {

constexpr double kLongestRangeSeconds = 48695.0;  // 2^31 - 1 frames at 44,100 Hz

const std::map<std::string, TempoMode> kTempoModes = {{"constant", TempoMode::constant},
                                                      {"varied", TempoMode::varied},
                                                      {"simple", TempoMode::simple},
                                                      {"off", TempoMode::off}};

std::string requirePhrase(const std::string& text) {
    for (const char* phrase : {"4", "8", "16", "32", "64", "128", "256"}) {
        if (text == phrase) return {};
    }
    return "takes 4, 8, 16, 32, 64, 128 or 256, not " + text;
}

void warnOf(const TrackReport& report) {
    if (report.isCutOff)
        printFileWarning(report.path, "is cut off; only its beginning was analysed");
    if (report.damagedPackets == 0) return;
    const std::string places = counted(report.damagedPackets, "damaged place");
    printFileWarning(report.path, places + " could not be decoded; silence was put there");
}

}  // namespace

void AnalysisArguments::declare(CLI::App& arguments) {
    arguments
        .add_option("--tempo", options_.tempo,
                    "constant: one tempo for the whole track (the usual case; default)\n"
                    "varied: the tempo may change along the track\n"
                    "simple: sensed at the track's beginning only, one regular grid\n"
                    "off: no tempo and no beats")
        ->transform(CLI::CheckedTransformer(kTempoModes).description(""))
        ->option_text("MODE");
    arguments
        .add_option(
            "--section", sectionBeats_,
            "varied tempo: measure it over phrases of so many beats (4, 8, 16, 32 …; default 32)")
        ->check(CLI::Validator(requirePhrase, ""))
        ->option_text("BEATS");
    arguments
        .add_option("--range", rangeSeconds_,
                    "simple tempo: sense this much of the beginning (default: one minute)")
        ->check(numberBetween(1.0, kLongestRangeSeconds))
        ->option_text("SECONDS");
    arguments.add_flag("--no-key", skipsKey_,
                       "do not look for the key (saves decoding the track once more)");
    arguments.add_flag("--partial", acceptsCutOff_,
                       "analyse what is there of a track that was cut off");
    arguments.add_flag("-q,--quiet", isQuiet_, "show no progress");
    arguments.add_flag("-v,--verbose", isVerbose_,
                       "show on standard error what the analysis and the decoders have to say");
}

void AnalysisArguments::settle() {
    if (sectionBeats_ && options_.tempo != TempoMode::varied) {
        throw UsageError("--section goes with --tempo varied");
    }
    if (rangeSeconds_ && options_.tempo != TempoMode::simple)
        throw UsageError("--range goes with --tempo simple");
    options_.sectionBeats = sectionBeats_.value_or(options_.sectionBeats);
    options_.rangeSeconds = rangeSeconds_.value_or(options_.rangeSeconds);
    options_.wantsKey = !skipsKey_;
    if (isVerbose_) StandardStreams::showLibraryLines();
    showFfmpegMessages(isVerbose_);
}

std::optional<TrackReport> AnalysisArguments::analyze(const std::string& path) {
    try {
        ProgressLine progress(path, !isQuiet_ && !isVerbose_);
        auto report = TrackAnalyzer(options_, acceptsCutOff_).analyze(path, progress);
        progress.clear();
        warnOf(report);
        return report;
    } catch (const TrackError& error) {
        return fail(path, error.what());
    } catch (const std::bad_alloc&) {
        return fail(path, "there is not enough memory");
    }
}

std::optional<TrackReport> AnalysisArguments::fail(const std::string& path,
                                                   const std::string& reason) {
    failure_ = reason;
    printFileError(path, reason);
    return std::nullopt;
}

}  // namespace app
