// SPDX-License-Identifier: MIT
#include "cli/CorrectCommand.h"

#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "catalogue/correction/Corrections.h"
#include "catalogue/correction/corrected.h"
#include "cli/keyNotation.h"
#include "cli/numberBetween.h"
#include "cli/offeredWords.h"
#include "cli/storedTrack.h"
#include "cli/timeArgument.h"
#include "output/KeyName.h"
#include "output/textSummary.h"

namespace app {

namespace {

using catalogue::Edit;
using catalogue::EditKind;

std::string requireKey(const std::string& text) {
    if (output::KeyName::parse(text)) return {};
    return "takes a key such as 8A, 1m, \"A minor\", Am or F#, not " + text;
}

/** @throws TrackError when the edit does not apply to what the track is so far */
void requireApplicable(const catalogue::Catalogue& catalogue, catalogue::TrackStore::Id track,
                       const Edit& edit) {
    const output::TrackReport report = readStored(catalogue, track).report;
    if (const char* reason = refusalOf(report.analysis, edit)) throw base::TrackError(reason);
}

}  // namespace

void CorrectCommand::declareOwn(CLI::App& arguments) {
    arguments
        .add_option("--bpm", bpm_,
                    "the tempo: a steady grid through the first downbeat, or where it is a\n"
                    "multiple of what was found, the found beats divided or thinned out")
        ->check(numberBetween(catalogue::kLowestCorrectedBpm, catalogue::kHighestCorrectedBpm))
        ->option_text("BPM");
    arguments.add_flag("--double", isDoubled_, "twice the tempo: a beat between each two");
    arguments.add_flag("--halve", isHalved_, "half the tempo: every second beat");
    arguments.add_flag("--shift-half", isShiftedByHalf_, "the beats lie between these");
    arguments
        .add_option("--shift-ms", shiftMilliseconds_,
                    "the beats are so much later, or with a minus earlier")
        ->check(numberBetween(-catalogue::kLongestShiftMilliseconds,
                              catalogue::kLongestShiftMilliseconds))
        ->option_text("MS");
    arguments
        .add_option("--downbeat", downbeatSeconds_, "a bar begins at the beat nearest to this")
        ->transform(timeBetween(0.0, catalogue::kLastDownbeatSeconds))
        ->option_text("TIME");
    arguments.add_option("--key", key_, "the key: 8A, 1m, \"A minor\", Am")
        ->check(offering({requireKey, ""}, wheelKeys()))
        ->option_text("KEY");
    arguments.add_flag("--undo", isUndone_, "take the last correction back");
}

void CorrectCommand::settle() {
    std::vector<Edit> edits;
    if (bpm_) edits.push_back({EditKind::bpm, *bpm_});
    if (isDoubled_) edits.push_back({EditKind::twice});
    if (isHalved_) edits.push_back({EditKind::half});
    if (isShiftedByHalf_) edits.push_back({EditKind::shiftHalf});
    if (shiftMilliseconds_) edits.push_back({EditKind::shiftMilliseconds, *shiftMilliseconds_});
    if (downbeatSeconds_) edits.push_back({EditKind::downbeat, *downbeatSeconds_});
    if (key_)
        edits.push_back(
            {EditKind::key, static_cast<double>(output::KeyName::parse(*key_).value().number())});
    if (edits.size() + (isUndone_ ? 1 : 0) != 1)
        throw base::UsageError("one correction at a time: --bpm, --double, --halve, --shift-half, "
                               "--shift-ms, --downbeat, --key or --undo");
    if (!isUndone_) edit_ = edits.front();
}

void CorrectCommand::handle(const catalogue::Catalogue& catalogue, const std::string& file,
                            ResultStream& results) {
    catalogue::TrackStore store(catalogue);
    const auto track = findStored(store, file);
    if (!track) throw base::TrackError("is not in the catalogue");
    catalogue::Corrections corrections(catalogue);
    std::string done;
    if (edit_) {
        requireApplicable(catalogue, *track, *edit_);
        corrections.add(*track, *edit_);
        done = correctionText(*edit_);
    } else {
        const auto undone = corrections.undo(*track);
        if (!undone) throw base::TrackError("has no correction to take back");
        done = "taken back: " + correctionText(*undone);
    }
    const output::TrackReport report = readStored(catalogue, *track).report;
    results.write(fmt::format("{}: {}; now {}, {}\n", base::displayName(file), done,
                              tempoText(report), keyText(report)));
}

}  // namespace app
