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
    arguments.add_flag("-q,--quiet", isQuiet_, "show no progress");
    arguments.add_flag("-v,--verbose", isVerbose_,
                       "show on standard error how files were read, and what the decoders say");
}

void TrackArguments::settle() const {
    media::showFfmpegMessages(isVerbose_);
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
    printFileError(path, reason);
}

}  // namespace app
