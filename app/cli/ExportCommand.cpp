// SPDX-License-Identifier: MIT
#include "cli/ExportCommand.h"

#include <algorithm>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "analysis/PeakGatherer.h"
#include "analysis/analyzeFile.h"
#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/declaredOptions.h"
#include "cli/keyNotation.h"
#include "cli/messages.h"
#include "cli/numberBetween.h"
#include "cli/offeredWords.h"
#include "cli/suggestion.h"
#include "cli/toolVersion.h"
#include "media/OutputFile.h"

namespace app {

namespace {

using output::ExportFormat;

// What readers of such files take where nothing is said.
constexpr int kUsualFramesPerPixel = 256;
constexpr int kFewestFramesPerPixel = 2;
constexpr int kMostFramesPerPixel = 1 << 24;

std::vector<std::string> formatNames() {
    std::vector<std::string> names;
    for (const ExportFormat& format : output::exportFormats()) names.push_back(format.name);
    return names;
}

/** @throws UsageError when there is no such format */
const ExportFormat& formatOf(const std::string& name) {
    for (const ExportFormat& format : output::exportFormats())
        if (format.name == name) return format;
    if (name.empty()) throw base::UsageError("say in which format: --to FORMAT");
    const std::vector<std::string> names = formatNames();
    throw base::UsageError(fmt::format("--to: takes one of {}, not {}{}", fmt::join(names, ", "),
                                       base::displayName(name), suggestion(name, names)));
}

std::string formatHelp() {
    std::size_t widest = 0;
    for (const ExportFormat& format : output::exportFormats())
        widest = std::max(widest, format.name.size());
    std::string text = "one of";
    for (const ExportFormat& format : output::exportFormats())
        text += fmt::format("\n{:<{}}  {}", format.name, widest, format.description);
    return text;
}

std::string requirePeakBits(const std::string& text) {
    if (text == "8" || text == "16") return {};
    return "takes 8 or 16, not " + text;
}

}  // namespace

ExportCommand::ExportCommand() : framesPerPixel_(kUsualFramesPerPixel) {}

void ExportCommand::declare(CLI::App& arguments) {
    arguments.add_option("FILE", paths_, "tracks of any common audio format")->option_text("...");
    declareFormat(arguments);
    places_.declare(arguments);
    origin_.declare(arguments);
    addKeyNotation(arguments, keyNotation_);
    analysisOptions_ = declaredOptions(arguments, [&] {
        analysis_.declare(arguments);
        effort_.declare(arguments);
        tracks_.declareReading(arguments);
    });
    tracks_.declareMessages(arguments);
    stored_.declare(arguments);
}

void ExportCommand::declareFormat(CLI::App& arguments) {
    // Whether there is such a format is asked later: a missing one is refused alike.
    arguments.add_option("-t,--to", formatName_, formatHelp())
        ->check(offering({[](const std::string&) { return std::string(); }, ""}, formatNames()))
        ->option_text("FORMAT");
    wavesOption_ = arguments.add_flag("--waves", options_.withWaves,
                                      "json, jsonl: the waveform overviews too");
    framesOption_ = arguments
                        .add_option("--samples-per-pixel", framesPerPixel_,
                                    "waveform: how many frames a peak is of (default: 256)")
                        ->check(wholeNumberBetween(kFewestFramesPerPixel, kMostFramesPerPixel))
                        ->option_text("FRAMES");
    bitsOption_ = arguments
                      .add_option("--peak-bits", options_.peakBits,
                                  "waveform: 8 or 16 (default) bits for a peak")
                      ->check(offering({requirePeakBits, ""}, {"8", "16"}))
                      ->option_text("BITS");
}

ExitCode ExportCommand::run(ResultStream& results) {
    settle();
    const bool allDone = places_.isForEach() ? exportEach(results) : exportTogether(results);
    if (!isStored_) tracks_.tellOutcome();
    return allDone ? kExitDone : kExitFailed;
}

void ExportCommand::settle() {
    settleFormat();
    settlePeaks();
    isStored_ = stored_.isAskedFor();
    if (isStored_ && !paths_.empty())
        throw base::UsageError("name either files, which are analysed, or tracks of a catalogue");
    if (!isStored_ && paths_.empty())
        throw base::UsageError("FILE is missing, or --catalogue for tracks that are in one");
    if (isStored_) {
        settleStored();
    } else {
        settleFiles();
    }
}

void ExportCommand::settleFormat() {
    format_ = &formatOf(formatName_);
    options_.toolVersion = toolVersion();
    const bool hasWaves = format_->tells == ExportFormat::Tells::everything;
    options_.withWaves = options_.withWaves && hasWaves;
    if (wavesOption_->count() > 0 && !hasWaves)
        throw base::UsageError("--waves goes with --to json or jsonl");
}

void ExportCommand::settleFiles() {
    analysis_.settle();
    for (std::string& path : paths_) path = unguarded(path);
    tracks_.settle(paths_);
    places_.choose(*format_);
    places_.settle(paths_);
}

/** Names are gathered only where each track gets a document of its own. */
void ExportCommand::settleStored() {
    if (const CLI::Option* given = firstGiven(analysisOptions_))
        throw base::UsageError("nothing is analysed of what is in a catalogue: --" +
                               given->get_lnames().front() + " goes with files");
    stored_.open(*format_, options_.withWaves);
    places_.choose(*format_);
    places_.settle(places_.isForEach() ? stored_.paths() : std::vector<std::string>());
    for (const std::string& place : places_.places().paths()) stored_.refuseToReplace(place);
}

void ExportCommand::settlePeaks() {
    if (isOfPeaks()) {
        const output::TimeOrigin& origin = origin_.origin();
        if (origin.at != output::TimeOrigin::At::music || origin.offsetMs != 0.0)
            throw base::UsageError("peaks begin with the music: --origin and --offset do not go "
                                   "with --to " +
                                   format_->name);
    } else if (framesOption_->count() > 0 || bitsOption_->count() > 0) {
        throw base::UsageError("--samples-per-pixel and --peak-bits go with --to waveform or "
                               "waveform-json");
    }
}

bool ExportCommand::isOfPeaks() const {
    return format_->tells == ExportFormat::Tells::peaksAlone;
}

/** One document that holds all tracks. */
bool ExportCommand::exportTogether(ResultStream& results) {
    if (places_.isStandardOutput())
        return addAll([&](std::string_view text) { results.write(text); });
    const std::string& path = places_.places().path(0);
    media::OutputFile file(path);
    const bool allDone =
        addAll([&](std::string_view text) { file.write(text.data(), text.size()); });
    const std::string warning = file.commit();
    if (!warning.empty()) printFileWarning(path, warning);
    return allDone;
}

bool ExportCommand::addAll(const output::DocumentSink& write) {
    const auto writer = format_->make(options_, write);
    const TrackReceiver receiver = {
        [](std::size_t) {},
        [&](std::size_t, ExportedTrack track) { writer->add(track, track.peaksOrNull()); },
        [&](const std::string& path, const std::string& reason) {
            writer->addFailure(path, reason);
        }};
    writer->begin();
    try {
        const bool allDone = handOver(receiver);
        writer->end();
        return allDone;
    } catch (const base::Interrupted&) {
        writer->end();
        if (!isStored_) tracks_.tellOutcome();
        throw;
    }
}

bool ExportCommand::exportEach(ResultStream& results) {
    const TrackReceiver receiver = {
        [&](std::size_t number) {
            if (!places_.isStandardOutput()) places_.places().requireFree(number);
        },
        [&](std::size_t number, ExportedTrack track) {
            const std::string warning = writeOne(track, number, results);
            if (!warning.empty()) printFileWarning(places_.places().path(number), warning);
        },
        [](const std::string&, const std::string&) {}};
    return handOver(receiver);
}

/** @return whether every track could be had */
bool ExportCommand::handOver(const TrackReceiver& receiver) {
    if (!isStored_) return analyseEach(receiver);
    TrackReceiver presented = receiver;
    presented.take = [&](std::size_t number, ExportedTrack track) {
        present(track);
        receiver.take(number, std::move(track));
    };
    return stored_.handOver(presented);
}

bool ExportCommand::analyseEach(const TrackReceiver& receiver) {
    bool allDone = true;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        auto exported = tracks_.attempt(paths_[i], [&](ProgressLine& progress) {
            receiver.prepare(i);
            return examine(paths_[i], progress);
        });
        allDone = allDone && exported.has_value();
        if (exported) {
            receiver.take(i, std::move(*exported));
        } else {
            receiver.takeFailure(paths_[i], tracks_.failure());
        }
    }
    return allDone;
}

/** @return as OutputFile::commit() */
std::string ExportCommand::writeOne(const ExportedTrack& exported, std::size_t number,
                                    ResultStream& results) const {
    const auto writeTo = [&](const output::DocumentSink& write) {
        const auto writer = format_->make(options_, write);
        writer->begin();
        writer->add(exported, exported.peaksOrNull());
        writer->end();
    };
    if (places_.isStandardOutput()) {
        writeTo([&](std::string_view text) { results.write(text); });
        return {};
    }
    media::OutputFile file(places_.places().path(number));
    writeTo([&](std::string_view text) { file.write(text.data(), text.size()); });
    return file.commit();
}

/** Nothing is looked for that the format does not hold. */
media::FileAnalysis::Options ExportCommand::reading(const std::string& path) const {
    media::FileAnalysis::Options options = tracks_.reading(path, effort_.effort());
    beatatlas::track::Options& track = options.track;
    track = analysis_.options();
    track.wantsWaves = options_.withWaves;
    if (isOfPeaks()) track.tempo = beatatlas::track::TempoMode::off;
    if (isOfPeaks() || format_->tells == ExportFormat::Tells::beatsAlone) track.wantsKey = false;
    track.wantsSessionKey = format_->tells == ExportFormat::Tells::everything && track.wantsKey;
    return options;
}

ExportedTrack ExportCommand::examine(const std::string& path, ProgressLine& progress) const {
    media::FileAnalysis::Options options = reading(path);
    PeakGatherer peaks(framesPerPixel_);
    if (isOfPeaks()) {
        options.alongside = [&](const media::StereoBlock& block) { peaks.put(block); };
        options.alongsideBytesPerFrame = peaks.bytesPerFrame();
    }
    ExportedTrack exported{analyzeFile(path, options, progress), std::nullopt};
    present(exported);
    if (isOfPeaks()) exported.peaks = peaks.finish(exported.analysis.rate);
    return exported;
}

void ExportCommand::present(ExportedTrack& track) const {
    track.keyNotation = keyNotation_;
    countFrom(track, origin_.origin());
}

}  // namespace app
