// SPDX-License-Identifier: MIT
#include "cli/CutCommand.h"

#include <algorithm>
#include <array>

#include <CLI/CLI.hpp>

#include "cli/bracketGuard.h"
#include "cli/messages.h"
#include "cli/numberBetween.h"
#include "cli/offeredWords.h"
#include "io/fileEnding.h"
#include "media/OutputFile.h"
#include "media/OverloadMeter.h"
#include "media/RecordingChain.h"
#include "media/waveFile.h"

namespace app {

namespace {

constexpr int kMostCutMode = 4;

// The shares of the work on the progress line.
constexpr double kDecoded = 0.15;
constexpr double kCut = 0.95;

constexpr std::array kDivs = {"1", "2", "4", "8", "16"};

std::string requireDiv(const std::string& text) {
    if (std::find(kDivs.begin(), kDivs.end(), text) != kDivs.end()) return {};
    return "takes 1, 2, 4, 8 or 16, not " + text;
}

/** What will be clipped when the result is converted to 16-bit integers. */
base::Overload overloadOf(const media::Recording& recording) {
    media::OverloadMeter meter;
    for (const auto& channel : recording.channels) meter.put(channel);
    return meter.overload();
}

}  // namespace

void CutCommand::declare(CLI::App& arguments) {
    arguments.add_option("FILE", path_, "a track of any common audio format")
        ->required()
        ->option_text(" ");
    arguments.add_option("-o,--output", outputPath_, "the result: a name that ends in .wav")
        ->required()
        ->option_text("OUT");
    arguments
        .add_option("--mode", options_.mode,
                    "how far apart the frames lie: 0 (closest; default) to 4 (quickest, least\n"
                    "memory); above 1 the sound wavers")
        ->check(wholeNumberBetween(0, kMostCutMode))
        ->option_text("MODE");
    arguments
        .add_option(
            "--div", options_.div,
            "how short the frames are: 4096 samples divided by 1 (default), 2, 4, 8 or 16;\n"
            "the shorter, the higher reaches what is held down with the bass drum")
        ->check(offering({requireDiv, ""}, {kDivs.begin(), kDivs.end()}))
        ->option_text("DIV");
    arguments.add_flag("--float", asFloat_, "write 32-bit floats instead of 16-bit integers");
    tracks_.declare(arguments);
}

ExitCode CutCommand::run(ResultStream&) {
    const std::string path = unguarded(path_);
    tracks_.settle({path});
    const std::string outputPath = unguarded(outputPath_);
    if (!hasEnding(outputPath, ".wav"))
        throw base::UsageError("the result's name must end in .wav (--output)");
    media::OutputFile::requireWritable(outputPath);
    if (media::OutputFile::isSameFile(path, outputPath))
        throw base::UsageError("the result would replace the track itself");
    const auto file = tracks_.attempt(
        path, [&](ProgressLine& progress) { return cutTrack(path, outputPath, progress); });
    if (!outputWarning_.empty()) printFileWarning(outputPath, outputWarning_);
    return file ? kExitDone : kExitFailed;
}

media::TrackFile CutCommand::cutTrack(const std::string& path, const std::string& outputPath,
                                      ProgressLine& progress) {
    media::TrackDecoder decoder(path);
    const double expectedSeconds = std::max(1.0, decoder.declaredSeconds().value_or(0.0));
    const auto show = [&](double fraction) { progress.show(fraction, expectedSeconds); };
    media::RecordingChain chain(expectedSeconds, [&](std::size_t frames) {
        const double seconds = static_cast<double>(frames) / chain.trackRate();
        show(kDecoded * std::min(1.0, seconds / expectedSeconds));
    });
    decoder.run(chain);
    media::Recording& recording = chain.recording();
    auto file = media::usableTrack(path, decoder, static_cast<std::int64_t>(recording.frames()),
                                   tracks_.acceptsCutOff());
    BeatCutter(options_).cut(recording,
                             [&](double done) { show(kDecoded + done * (kCut - kDecoded)); });
    if (!asFloat_) file.overload = overloadOf(recording);
    outputWarning_ = media::writeWave(
        outputPath, recording, asFloat_ ? media::WaveSamples::float32 : media::WaveSamples::int16,
        [&](double done) { show(kCut + done * (1.0 - kCut)); });
    return file;
}

}  // namespace app
