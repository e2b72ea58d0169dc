// SPDX-License-Identifier: MIT
#include "cli/TrackArguments.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "cli/messages.h"
#include "media/StandardInput.h"
#include "media/ffmpeg.h"
#include "output/fileWarnings.h"

namespace app {

namespace {

std::string requireRawFormat(const std::string& text) {
    if (media::parseRawFormat(text)) return {};
    return "takes samples, rate and channels such as s16le:44100:2 or f32be:48000:1, not " + text;
}

}  // namespace

void TrackArguments::declare(CLI::App& arguments) {
    declareReading(arguments);
    declareMessages(arguments);
}

void TrackArguments::declareReading(CLI::App& arguments) {
    arguments
        .add_option("--raw", rawFormat_,
                    "with the FILE -: what comes in by standard input has no header; samples u8,\n"
                    "s8, s16le, s24le, s32le, f32le or f64le (or be), rate and channels:\n"
                    "s16le:44100:2")
        ->check(CLI::Validator(requireRawFormat, ""))
        ->option_text("FORMAT");
    declareCutOff(arguments);
}

void TrackArguments::declareCutOff(CLI::App& arguments) {
    arguments.add_flag("--partial", acceptsCutOff_,
                       "take what is there of a track that was cut off");
}

void TrackArguments::declareMessages(CLI::App& arguments) {
    arguments.add_flag("-q,--quiet", isQuiet_,
                       "tell nothing of progress; warnings and errors stay");
    arguments.add_flag("-v,--verbose", isVerbose_,
                       "show on standard error how files were read, and what the decoders say");
}

void TrackArguments::settle(const std::vector<std::string>& paths) {
    const auto inputs = std::count_if(paths.begin(), paths.end(), media::StandardInput::isNamedBy);
    if (inputs > 1) throw base::UsageError("standard input (-) can be read only once");
    if (rawFormat_ && inputs == 0)
        throw base::UsageError("--raw tells the format of standard input: the FILE - is missing");
    media::StandardInput::setRawFormat(rawFormat_ ? media::parseRawFormat(*rawFormat_)
                                                  : std::nullopt);
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
