// SPDX-License-Identifier: MIT
#include "cli/ListCommand.h"

#include <limits>
#include <map>
#include <utility>

#include <CLI/CLI.hpp>

#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "catalogue/CatalogueError.h"
#include "cli/bracketGuard.h"
#include "cli/keyNotation.h"
#include "cli/numberBetween.h"
#include "cli/oneOf.h"
#include "cli/storedTrack.h"

namespace app {

namespace {

using Order = catalogue::TrackQuery::Order;

constexpr double kLowestBpm = 1.0;
constexpr double kHighestBpm = 10000.0;
constexpr double kMostPercent = 30.0;
constexpr std::size_t kBufferBytes = 65536;

std::map<std::string, Order> orders() {
    return {{"path", Order::path},   {"artist", Order::artist},
            {"title", Order::title}, {"bpm", Order::bpm},
            {"key", Order::key},     {"length", Order::length},
            {"added", Order::added}, {"confidence", Order::confidence}};
}

std::map<std::string, output::ListFormat> formats() {
    return {{"table", output::ListFormat::table},
            {"jsonl", output::ListFormat::jsonLines},
            {"csv", output::ListFormat::csv},
            {"m3u8", output::ListFormat::playlist}};
}

std::optional<double> bpmOf(const std::string& text) {
    double bpm = 0.0;
    if (!CLI::detail::lexical_cast(text, bpm) || !(bpm >= kLowestBpm && bpm <= kHighestBpm))
        return std::nullopt;
    return bpm;
}

/** "128" is a range of one tempo. */
std::optional<catalogue::BpmRange> rangeOf(const std::string& text) {
    const std::size_t colon = text.find(':');
    const auto lowest = bpmOf(text.substr(0, colon));
    const auto highest = colon == std::string::npos ? lowest : bpmOf(text.substr(colon + 1));
    if (!lowest || !highest || *lowest > *highest) return std::nullopt;
    return catalogue::BpmRange{*lowest, *highest};
}

std::string requireRange(const std::string& text) {
    if (rangeOf(text)) return {};
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

/** Gathers lines, so that a long list is not written line by line. */
class BufferedLines {
public:
    explicit BufferedLines(ResultStream& results) : results_(results) {}

    void write(std::string_view text) {
        buffer_ += text;
        if (buffer_.size() >= kBufferBytes) flush();
    }

    void flush() {
        results_.write(buffer_);
        buffer_.clear();
    }

private:
    ResultStream& results_;
    std::string buffer_;
};

}  // namespace

void ListCommand::declare(CLI::App& arguments) {
    declareFilters(arguments);
    declareForm(arguments);
    catalogue_.declare(arguments);
}

void ListCommand::declareFilters(CLI::App& arguments) {
    arguments
        .add_option(
            "TEXT", query_.text,
            "what path, artist or title contain, whatever the capitals and accents; one or\n"
            "two letters: what artist or title begin with")
        ->option_text(" ");
    arguments.add_option("--bpm", bpm_, "of this tempo, or from one to another: 120:128")
        ->check(CLI::Validator(requireRange, ""))
        ->option_text("LO:HI");
    arguments.add_option("--key", key_, "in this key: 8A, 1m, \"A minor\", Am")
        ->check(CLI::Validator(requireKey, ""))
        ->option_text("KEY");
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
    arguments.add_flag("--low-confidence", isUnsure_,
                       "whose tempo or key is less certain than 0.8");
    arguments.add_flag("--corrected", query_.isCorrected, "that somebody has corrected");
    arguments.add_flag("--gone", query_.isGone, "that are no longer where they were");
    arguments.add_flag("--failed", isFailed_,
                       "instead: the files of music that could not be analysed, and why");
}

void ListCommand::declareForm(CLI::App& arguments) {
    arguments
        .add_option(
            "--sort", query_.order,
            "path (default), artist, title, bpm, key, length, confidence or added; what is\n"
            "missing comes first")
        ->transform(oneOf(orders()))
        ->option_text("ORDER");
    arguments.add_flag("--reverse", query_.isReversed, "the other way round");
    arguments.add_option("--limit", query_.limit, "no more than so many")
        ->check(wholeNumberBetween(0, std::numeric_limits<int>::max()))
        ->option_text("NUMBER");
    arguments
        .add_option("--format", format_,
                    "table (default), jsonl: one JSON object a line, csv, or m3u8: a playlist")
        ->transform(oneOf(formats()))
        ->option_text("FORMAT");
    addKeyNotation(arguments, keyNotation_);
}

bool ListCommand::hasFilter() const {
    return !query_.text.empty() || bpm_ || key_ || companion_ || isUnsure_ || query_.isCorrected ||
           query_.isGone || query_.order != Order::path;
}

void ListCommand::settle() {
    if (isFailed_ && hasFilter())
        throw base::UsageError("--failed goes with --reverse, --limit and --format alone");
    if (withinPercent_ && !companion_)
        throw base::UsageError("--within goes with --compatible-with");
    if (companion_ && (key_ || bpm_))
        throw base::UsageError("--compatible-with goes with neither --key nor --bpm");
    query_.text = unguarded(query_.text);
    if (bpm_) query_.bpm = {rangeOf(*bpm_).value()};
    if (key_) query_.keys = {output::KeyName::parse(*key_).value().number()};
    if (isUnsure_) query_.confidenceBelow = catalogue::kSureConfidence;
}

/** @throws UsageError when the catalogue does not know what is to be mixed with */
void ListCommand::settleCompanion(const catalogue::Catalogue& catalogue) {
    const std::string name = unguarded(*companion_);
    if (const auto key = output::KeyName::parse(name)) {
        if (withinPercent_) throw base::UsageError("--within goes with a track, not with a key");
        query_.keys = catalogue::compatibleKeys(key->number());
        return;
    }
    catalogue::TrackStore store(catalogue);
    const auto track = findStored(store, name);
    const std::string shown = base::displayName(name);
    if (!track) throw base::UsageError(shown + " is neither a key nor in the catalogue");
    const beatatlas::track::TrackResult found = companionOf(catalogue, *track, shown);
    if (!found.key && !found.bpm) throw base::UsageError(shown + " has neither a key nor a tempo");
    if (found.key) query_.keys = catalogue::compatibleKeys(found.key->best());
    if (found.bpm)
        query_.bpm =
            catalogue::compatibleTempos(*found.bpm, withinPercent_.value_or(catalogue::kUsualPercent));
    query_.except = track;
}

void ListCommand::listAll(const catalogue::Catalogue& catalogue, output::ListWriter& writer) const {
    const auto add = [&writer](const auto& entry) {
        base::Interrupt::check();
        writer.add(entry);
    };
    if (isFailed_) {
        writer.beginFailures();
        listFailures(catalogue, query_.isReversed, query_.limit, add);
    } else {
        writer.beginTracks();
        listTracks(catalogue, query_, add);
    }
}

ExitCode ListCommand::run(ResultStream& results) {
    settle();
    const catalogue::Catalogue catalogue(catalogue_.path(), catalogue::Catalogue::Access::read);
    if (companion_) settleCompanion(catalogue);
    BufferedLines lines(results);
    const auto writer = makeListWriter(
        format_, [&lines](std::string_view text) { lines.write(text); }, keyNotation_);
    listAll(catalogue, *writer);
    lines.flush();
    return kExitDone;
}

}  // namespace app
