// SPDX-License-Identifier: MIT
#include "cli/TagCommand.h"

#include <map>

#include <CLI/CLI.hpp>

#include "analysis/analyzeFile.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "cli/messages.h"
#include "cli/oneOf.h"
#include "media/StandardInput.h"
#include "media/tags/TagFile.h"
#include "output/TagEntry.h"

namespace app {

namespace {

/** Those whose names have the three letters at most that ID3 has room for. */
std::map<std::string, output::KeyNotation> notations() {
    return {{"standard", output::KeyNotation::standard},
            {"sharps", output::KeyNotation::sharps},
            {"flats", output::KeyNotation::flats},
            {"camelot", output::KeyNotation::camelot},
            {"openkey", output::KeyNotation::openKey}};
}

/** As tags have it: "Am" for "A minor", "Bb" for "Bb major". */
std::string tagKey(std::string name) {
    const std::size_t space = name.find(' ');
    if (space == std::string::npos) return name;
    const bool isMinor = name.ends_with("minor");
    name.resize(space);
    return isMinor ? name + "m" : name;
}

/** What could not be written is the track itself, which is named anyway. */
std::string withoutName(const std::string& reason, const std::string& path) {
    const std::string name = base::displayName(path) + " ";
    return reason.starts_with(name) ? reason.substr(name.size()) : reason;
}

}  // namespace

void TagCommand::declareOwn(CLI::App& arguments, CLI::Option* /*json*/) {
    auto* write =
        arguments.add_flag("--write", writes_, "change the files; otherwise show what would be");
    arguments.add_flag("--dry-run", isDryRun_, "show what would be done (what is done anyway)")
        ->excludes(write);
    arguments.add_flag("--overwrite", overwrites_,
                       "replace a tempo or key that is there and says something else");
    arguments.add_flag("--keep-mtime", rewrite_.keepsTime, "the files keep their times")
        ->needs(write);
    arguments
        .add_flag("--backup", rewrite_.keepsBackup,
                  "the old file stays beside the new one: song.mp3.bak")
        ->needs(write);
    arguments
        .add_option("--key-notation", notation_,
                    "how keys are written: standard (F#m, Bb; default), sharps (A#), flats (Gbm),\n"
                    "camelot (11A) or openkey (4m)")
        ->transform(oneOf(notations()))
        ->option_text("NAMES");
    analysis_.declare(arguments);
    effort_.declare(arguments);
}

void TagCommand::settleOwn() {
    analysis_.settle();
    if (analysis_.options().tempo == beatatlas::track::TempoMode::off &&
        !analysis_.options().wantsKey)
        throw base::UsageError("--tempo off and --no-key leave nothing to write");
}

std::unique_ptr<output::ReportEntry> TagCommand::examine(const std::string& path) {
    const auto tag = [&](ProgressLine& progress) { return tagTrack(path, progress); };
    return examineBy<output::TagEntry>(tag, path);
}

output::TagReport TagCommand::tagTrack(const std::string& path, ProgressLine& progress) {
    if (media::StandardInput::isNamedBy(path))
        throw base::TrackError("is standard input, which has no tags that could be changed");
    try {
        if (writes_) media::TagRewrite(rewrite_).requirePossible(path);
        const media::TagFile tags(path, media::TagFile::Access::read);
        media::FileAnalysis::Options reading = this->tracks().reading(path, effort_.effort());
        reading.track = analysis_.options();
        reading.track.wantsWaves = false;
        output::TagReport report{analyzeFile(path, reading, progress), {}, false};
        report.changes = planTags(tags.fields(), wishFrom(report.analysis), overwrites_);
        if (writes_ && report.hasWork()) write(report);
        return report;
    } catch (const base::OutputError& error) {
        throw base::TrackError(withoutName(error.what(), path));
    }
}

media::TagWish TagCommand::wishFrom(const beatatlas::track::TrackResult& analysis) const {
    media::TagWish wish;
    wish.bpm = analysis.bpm;
    if (analysis.key) wish.key = tagKey(output::KeyName(analysis.key->best()).in(notation_));
    return wish;
}

void TagCommand::write(output::TagReport& report) {
    for (const std::string& lost : media::TagRewrite(rewrite_).write(report.path, report.changes))
        printFileWarning(report.path, lost);
    report.isWritten = true;
}

}  // namespace app
