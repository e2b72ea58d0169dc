// SPDX-License-Identifier: MIT
#include "cli/AnalysisArguments.h"

#include <map>

#include <CLI/CLI.hpp>

#include "base/errors.h"
#include "cli/numberBetween.h"

namespace app {

namespace {

constexpr double kLongestRangeSeconds = 48695.0;  // 2^31 - 1 frames at 44,100 Hz

std::map<std::string, beatatlas::track::TempoMode> tempoModes() {
    return {{"constant", beatatlas::track::TempoMode::constant},
            {"varied", beatatlas::track::TempoMode::varied},
            {"simple", beatatlas::track::TempoMode::simple},
            {"off", beatatlas::track::TempoMode::off}};
}

std::string requirePhrase(const std::string& text) {
    for (const char* phrase : {"4", "8", "16", "32", "64", "128", "256"}) {
        if (text == phrase) return {};
    }
    return "takes 4, 8, 16, 32, 64, 128 or 256, not " + text;
}

}  // namespace

void AnalysisArguments::declare(CLI::App& arguments) {
    arguments
        .add_option("--tempo", options_.tempo,
                    "constant: one tempo for the whole track (the usual case; default)\n"
                    "varied: the tempo may change along the track\n"
                    "simple: sensed at the track's beginning only, one regular grid\n"
                    "off: no tempo and no beats")
        ->transform(CLI::CheckedTransformer(tempoModes()).description(""))
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
                       "do not look for the key (saves a tenth of the time)");
}

void AnalysisArguments::settle() {
    if (sectionBeats_ && options_.tempo != beatatlas::track::TempoMode::varied) {
        throw base::UsageError("--section goes with --tempo varied");
    }
    if (rangeSeconds_ && options_.tempo != beatatlas::track::TempoMode::simple)
        throw base::UsageError("--range goes with --tempo simple");
    options_.sectionBeats = sectionBeats_.value_or(options_.sectionBeats);
    options_.rangeSeconds = rangeSeconds_.value_or(options_.rangeSeconds);
    options_.wantsKey = !skipsKey_;
}

}  // namespace app
