// SPDX-License-Identifier: MIT
#include "cli/CompareCommand.h"

#include <fstream>
#include <optional>

#include <CLI/CLI.hpp>

#include "analysis/analyzeFile.h"
#include "base/errors.h"
#include "cli/bracketGuard.h"
#include "cli/messages.h"
#include "cli/toolVersion.h"
#include "comparison/readBeatSheet.h"
#include "media/StandardInput.h"

namespace app {

namespace {

// Audio shows what it is within these.
constexpr std::size_t kFirstBytes = 4096;

// A result with all of its waveforms has a hundredth of this.
constexpr std::size_t kMostTextBytes = 256 * 1024 * 1024;

std::string readUpTo(std::istream& file, std::size_t count) {
    std::string bytes(count, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

/** The whole of a file that begins as a text does; nothing of any other. Standard input holds a
 *  track, as it does for every command. A list of beats may come
 *  through a pipe. @throws TrackError when it is far too long */
std::optional<std::string> textOf(const std::string& path) {
    if (media::StandardInput::isNamedBy(path)) return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::string text = readUpTo(file, kFirstBytes);
    if (text.empty() || !comparison::isText(text)) return std::nullopt;
    while (file && text.size() <= kMostTextBytes) text += readUpTo(file, text.size());
    if (text.size() > kMostTextBytes)
        throw base::TrackError("is too long for what is known of one track");
    return text;
}

comparison::BeatSheet sheetOf(const beatatlas::track::TrackResult& analysis) {
    comparison::BeatSheet sheet;
    sheet.bpm = analysis.bpm;
    for (const beatatlas::track::Beat& beat : analysis.beats)
        sheet.beats.push_back({beat.seconds, beat.numberInBar});
    if (analysis.key) sheet.key = analysis.key->best();
    return comparison::finished(std::move(sheet));
}

}  // namespace

void CompareCommand::declare(CLI::App& arguments) {
    arguments
        .add_option("A", a_,
                    "what is compared: a result of beatatlas analyze --json, a track, or beats:\n"
                    "JAMS, Audacity labels, or text with a time a line and the beat's number\n"
                    "behind it, if known")
        ->required()
        ->option_text(" ");
    arguments.add_option("B", b_, "what it is compared with: one of these, too")
        ->required()
        ->option_text(" ");
    arguments.add_flag("--json", asJson_, "print one JSON document for programs");
    analysis_.declare(arguments);
    effort_.declare(arguments);
    tracks_.declare(arguments);
}

ExitCode CompareCommand::run(ResultStream& results) {
    analysis_.settle();
    const std::vector<std::string> paths = {unguarded(a_), unguarded(b_)};
    tracks_.settle(paths);
    for (const std::string& path : paths) {
        if (!addSide(path)) return kExitFailed;
    }
    results.write(asJson_ ? comparison::comparisonJson(sides_[0], sides_[1], toolVersion())
                          : comparison::comparisonText(sides_[0], sides_[1]));
    return kExitDone;
}

bool CompareCommand::addSide(const std::string& path) {
    try {
        const auto text = textOf(path);
        return text ? addText(path, *text) : addTrack(path);
    } catch (const base::TrackError& error) {
        printFileError(path, error.what());
        return false;
    }
}

bool CompareCommand::addText(const std::string& path, const std::string& text) {
    sides_.push_back({path, comparison::readBeatSheet(text)});
    return true;
}

bool CompareCommand::addTrack(const std::string& path) {
    media::FileAnalysis::Options reading = tracks_.reading(path, effort_.effort());
    reading.track = analysis_.options();
    reading.track.wantsWaves = false;
    const auto report = tracks_.attempt(
        path, [&](ProgressLine& progress) { return analyzeFile(path, reading, progress); });
    if (report) sides_.push_back({path, sheetOf(report->analysis)});
    return report.has_value();
}

}  // namespace app
