// SPDX-License-Identifier: MIT
#include "cli/TrackArguments.h"

#include <cmath>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/messages.h"
#include "media/ffmpeg.h"
#include "output/textFormat.h"

namespace app {

namespace {

std::string loudness(const base::Overload& overload) {
    const std::string samples = "clipped " + output::counted(overload.clipped, "sample");
    if (std::isinf(overload.peak)) return samples + ", up to infinity";
    return samples +
           fmt::format(", up to {:.1f} dB over full scale", 20.0 * std::log10(overload.peak));
}

}  // namespace

void TrackArguments::declare(CLI::App& arguments) {
    arguments.add_flag("--partial", acceptsCutOff_,
                       "take what is there of a track that was cut off");
    arguments.add_flag("-q,--quiet", isQuiet_,
                       "tell nothing of progress; warnings and errors stay");
    arguments.add_flag("-v,--verbose", isVerbose_,
                       "show on standard error how files were read, and what the decoders say");
}

void TrackArguments::settle(const std::vector<std::string>& paths) {
    media::showFfmpegMessages(isVerbose_);
    // Notes and the decoders' messages would go through the line.
    const auto manner = isVerbose_ ? ProgressLine::Manner::lines : ProgressLine::Manner::watched;
    progress_.emplace(paths, isQuiet_ ? ProgressLine::Manner::quiet : manner);
}

media::FileAnalysis::Options TrackArguments::reading(const std::string& path,
                                                     const media::Effort& effort) const {
    media::FileAnalysis::Options options;
    options.effort = effort;
    options.acceptsCutOff = acceptsCutOff_;
    if (isVerbose_) options.note = [path](const std::string& text) { printFileNote(path, text); };
    return options;
}

void TrackArguments::warnOf(const base::TrackSource& file) {
    if (file.isCutOff) printFileWarning(file.path, "is cut off; only its beginning was taken");
    if (file.damagedPackets > 0) {
        const std::string places = output::counted(file.damagedPackets, "damaged place");
        printFileWarning(file.path, places + " could not be decoded; silence was put there");
    }
    const base::Overload& overload = file.overload;
    if (overload.isTooLoud()) printFileWarning(file.path, "is too loud: " + loudness(overload));
    if (overload.notNumbers > 0) {
        const std::string samples = output::counted(overload.notNumbers, "sample");
        printFileWarning(file.path, "holds no number in " + samples + "; silence was put there");
    }
}

void TrackArguments::fail(const std::string& path, const std::string& reason) {
    failure_ = reason;
    progress_->endTrack(false);
    printFileError(path, reason);
}

}  // namespace app
