// SPDX-License-Identifier: MIT
#include "cli/AnalysisArguments.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "base/errors.h"
#include "cli/NumberRange.h"
#include "cli/offeredWords.h"
#include "cli/oneOf.h"
#include "cli/timeArgument.h"

namespace app {

namespace {

constexpr double kLowestBpm = 20.0;
constexpr double kHighestBpm = 1000.0;
constexpr double kLongestRangeSeconds = 48695.0;  // 2^31 - 1 frames at 44,100 Hz

std::map<std::string, beatatlas::track::TempoMode> tempoModes() {
    return {{"auto", beatatlas::track::TempoMode::automatic},
            {"constant", beatatlas::track::TempoMode::constant},
            {"varied", beatatlas::track::TempoMode::varied},
            {"simple", beatatlas::track::TempoMode::simple},
            {"off", beatatlas::track::TempoMode::off}};
}

constexpr std::array kPhrases = {"4", "8", "16", "32", "64", "128", "256"};

std::string requirePhrase(const std::string& text) {
    if (std::find(kPhrases.begin(), kPhrases.end(), text) != kPhrases.end()) return {};
    return "takes 4, 8, 16, 32, 64, 128 or 256, not " + text;
}

/** Wide enough that every tempo can be doubled or halved into it. */
std::optional<NumberRange> bpmRangeOf(const std::string& text) {
    const auto range = NumberRange::parse(text, kLowestBpm, kHighestBpm);
    return range && range->highest >= 2.0 * range->lowest ? range : std::nullopt;
}

std::string requireBpmRange(const std::string& text) {
    if (bpmRangeOf(text)) return {};
    return "takes two tempos from 20 to 1000 BPM such as 85:170, the second at least twice the "
           "first, not " +
           text;
}

std::string requireBar(const std::string& text) {
    if (text == "3" || text == "4") return {};
    return "takes 3 or 4, not " + text;
}

}  // namespace

void AnalysisArguments::declare(CLI::App& arguments) {
    arguments
        .add_option("--tempo", options_.tempo,
                    "auto: steady or varying, as it turns out (default)\n"
                    "constant: one session of one tempo for the whole track\n"
                    "varied: one session whose tempo may change along the track\n"
                    "simple: sensed at the track's beginning only, one regular grid\n"
                    "off: no tempo and no beats")
        ->transform(oneOf(tempoModes()))
        ->option_text("MODE");
    declareForOneMode(arguments);
    arguments.add_flag("--no-key", skipsKey_, "do not look for the key");
}

/** What has a meaning with one way to find the tempo only. */
void AnalysisArguments::declareForOneMode(CLI::App& arguments) {
    bpmRangeOption_ = arguments.add_option(
        "--bpm-range", bpmRange_,
        "auto tempo: double or halve it into this range, say 85:170; the upper end is\n"
        "at least twice the lower one");
    bpmRangeOption_->check(CLI::Validator(requireBpmRange, ""))->option_text("LO:HI");
    beatsPerBarOption_ = arguments.add_option("--beats-per-bar", beatsPerBar_,
                                              "auto tempo: 3 or 4, where you know it");
    beatsPerBarOption_->check(offering({requireBar, ""}, {"3", "4"}))->option_text("BEATS");
    sectionOption_ = arguments.add_option(
        "--section", sectionBeats_,
        "varied tempo: measure it over phrases of so many beats (4, 8, 16, 32 …; default 32)");
    sectionOption_->check(offering({requirePhrase, ""}, {kPhrases.begin(), kPhrases.end()}))
        ->option_text("BEATS");
    rangeOption_ = arguments.add_option(
        "--range", rangeSeconds_,
        "simple tempo: sense this much of the beginning (default: one minute)");
    rangeOption_->transform(timeBetween(1.0, kLongestRangeSeconds))->option_text("TIME");
}

void AnalysisArguments::refuseUnless(beatatlas::track::TempoMode mode, const CLI::Option& option,
                                     const char* refusal) const {
    if (option.count() > 0 && options_.tempo != mode) throw base::UsageError(refusal);
}

void AnalysisArguments::settle() {
    using beatatlas::track::TempoMode;
    refuseUnless(TempoMode::varied, *sectionOption_, "--section goes with --tempo varied");
    refuseUnless(TempoMode::simple, *rangeOption_, "--range goes with --tempo simple");
    refuseUnless(TempoMode::automatic, *bpmRangeOption_, "--bpm-range goes with --tempo auto");
    refuseUnless(TempoMode::automatic, *beatsPerBarOption_,
                 "--beats-per-bar goes with --tempo auto");
    if (bpmRange_ && options_.tempo == TempoMode::automatic) {
        const NumberRange range = bpmRangeOf(*bpmRange_).value();
        options_.lowestBpm = range.lowest;
        options_.highestBpm = range.highest;
    }
    if (options_.tempo == TempoMode::automatic) options_.beatsPerBar = beatsPerBar_.value_or(0);
    options_.sectionBeats = sectionBeats_.value_or(options_.sectionBeats);
    options_.rangeSeconds = rangeSeconds_.value_or(options_.rangeSeconds);
    options_.wantsKey = !skipsKey_;
}

}  // namespace app
