// SPDX-License-Identifier: MIT
#include "cli/ListFilters.h"

#include <limits>

#include <CLI/CLI.hpp>

#include "base/displayName.h"
#include "base/errors.h"
#include "catalogue/CatalogueError.h"
#include "cli/NumberRange.h"
#include "cli/bracketGuard.h"
#include "cli/keyNotation.h"
#include "cli/numberBetween.h"
#include "cli/offeredWords.h"
#include "cli/oneOf.h"
#include "cli/storedTrack.h"
#include "output/KeyName.h"

namespace app {

namespace {

using catalogue::TrackQuery;
using Order = TrackQuery::Order;

constexpr double kMostPercent = 30.0;

std::optional<NumberRange> tempoRange(const std::string& text) {
    return NumberRange::parse(text, catalogue::kLowestBpm, catalogue::kHighestBpm);
}

std::string requireTempo(const std::string& text) {
    if (tempoRange(text)) return {};
    return "takes a tempo or two such as 120:128, from 1 to 10000 BPM, the lower one first, not " +
           text;
}

std::string requireKey(const std::string& text) {
    if (output::KeyName::parse(text)) return {};
    return "takes a key such as 8A, 1m, \"A minor\", Am or F#, not " + text;
}

/** @param shown  its name in messages */
beatatlas::track::TrackResult companionOf(const catalogue::Catalogue& catalogue,
                                          catalogue::TrackStore::Id track,
                                          const std::string& shown) {
    try {
        return readStored(catalogue, track).report.analysis;
    } catch (const catalogue::DamagedRecord& damage) {
        throw catalogue::CatalogueError(shown + ": " + damage.what());
    }
}

}  // namespace

void ListFilters::declare(CLI::App& arguments, const std::string& textName) {
    declareConditions(arguments, textName);
    declareCompany(arguments);
    declareOrder(arguments);
}

void ListFilters::declareConditions(CLI::App& arguments, const std::string& textName) {
    arguments
        .add_option(textName, query_.text,
                    "what path, artist or title contain, whatever the capitals and accents")
        ->option_text(textName.starts_with('-') ? "TEXT" : " ");
    arguments.add_option("--bpm", bpm_, "of this tempo, or from one to another: 120:128")
        ->check(CLI::Validator(requireTempo, ""))
        ->option_text("LO:HI");
    arguments.add_option("--key", key_, "in this key: 8A, 1m, \"A minor\", Am")
        ->check(offering({requireKey, ""}, wheelKeys()))
        ->option_text("KEY");
    arguments.add_flag("--low-confidence", isUnsure_,
                       "whose tempo or key is less certain than 0.8");
    arguments.add_flag("--corrected", query_.isCorrected, "that somebody has corrected");
    arguments.add_flag("--gone", query_.isGone, "that are no longer where they were");
}

void ListFilters::declareCompany(CLI::App& arguments) {
    arguments
        .add_option("--compatible-with", companion_,
                    "what mixes with a track of the catalogue or a key: the same key, a fifth up\n"
                    "or down, or the relative; of a track also about its tempo, half or double")
        ->option_text("FILE|KEY");
    arguments
        .add_option("--within", withinPercent_,
                    "with --compatible-with FILE: how far the tempos are apart, in percent\n"
                    "(default: 6)")
        ->check(numberBetween(0.0, kMostPercent))
        ->option_text("PERCENT");
}

void ListFilters::declareOrder(CLI::App& arguments) {
    arguments
        .add_option(
            "--sort", query_.order,
            "path (default), artist, title, bpm, key, length, confidence or added; what is\n"
            "missing comes first")
        ->transform(oneOf(catalogue::orders()))
        ->option_text("ORDER");
    arguments.add_flag("--reverse", query_.isReversed, "the other way round");
    arguments.add_option("--limit", query_.limit, "no more than so many")
        ->check(wholeNumberBetween(0, std::numeric_limits<int>::max()))
        ->option_text("NUMBER");
}

bool ListFilters::isNarrowing() const {
    return !query_.text.empty() || bpm_ || key_ || companion_ || isUnsure_ || query_.isCorrected ||
           query_.isGone || query_.order != Order::path;
}

void ListFilters::settle() {
    if (withinPercent_ && !companion_)
        throw base::UsageError("--within goes with --compatible-with");
    query_.text = unguarded(query_.text);
    if (const auto range = bpm_ ? tempoRange(*bpm_) : std::nullopt)
        query_.bpm = {{range->lowest, range->highest}};
    if (const auto key = key_ ? output::KeyName::parse(*key_) : std::nullopt)
        query_.keys = {key->number()};
    if (isUnsure_) query_.confidenceBelow = catalogue::kSureConfidence;
}

TrackQuery ListFilters::queryIn(const catalogue::Catalogue& catalogue) const {
    TrackQuery query = query_;
    if (companion_) addCompany(query, catalogue);
    return query;
}

void ListFilters::addCompany(TrackQuery& query, const catalogue::Catalogue& catalogue) const {
    const std::string name = unguarded(*companion_);
    if (const auto key = output::KeyName::parse(name)) {
        if (withinPercent_) throw base::UsageError("--within goes with a track, not with a key");
        catalogue::narrowToCompatible(query, key->number(), std::nullopt, 0.0);
        return;
    }
    catalogue::TrackStore store(catalogue);
    const auto track = findStored(store, name);
    const std::string shown = base::displayName(name);
    if (!track) throw base::UsageError(shown + " is neither a key nor in the catalogue");
    const beatatlas::track::TrackResult found = companionOf(catalogue, *track, shown);
    if (!found.key && !found.bpm) throw base::UsageError(shown + " has neither a key nor a tempo");
    const std::optional<int> key = found.key ? std::optional(found.key->best()) : std::nullopt;
    catalogue::narrowToCompatible(query, key, found.bpm,
                                  withinPercent_.value_or(catalogue::kUsualPercent));
    query.except = track;
}

}  // namespace app
