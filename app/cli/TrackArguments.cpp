// SPDX-License-Identifier: MIT
#include "cli/TrackArguments.h"

#include <CLI/CLI.hpp>

#include "cli/messages.h"
#include "media/ffmpeg.h"
#include "output/fileWarnings.h"

namespace app {

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
    // Notes and the decoders' messages would break the progress line.
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
    for (const std::string& warning : output::fileWarnings(file))
        printFileWarning(file.path, warning);
}

void TrackArguments::fail(const std::string& path, const std::string& reason) {
    failure_ = reason;
    progress_->endTrack(false);
    printFileError(path, reason);
}

}  // namespace app
