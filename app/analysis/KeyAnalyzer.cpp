// SPDX-License-Identifier: MIT
#include "analysis/KeyAnalyzer.h"

#include "analysis/analyzeFile.h"
#include "analysis/bufferFinders.h"

namespace app {

namespace {

constexpr int kPitchMode = 0;

beatatlas::track::Options keyAlone() {
    beatatlas::track::Options options;
    options.tempo = beatatlas::track::TempoMode::off;
    options.wantsWaves = false;
    options.wantsSessionKey = true;
    return options;
}

}  // namespace

output::KeyReport KeyAnalyzer::analyze(const std::string& path, ProgressLine& progress) const {
    output::KeyReport report;
    MonoGatherer gatherer;
    media::FileAnalysis::Options reading = reading_;
    reading.track = keyAlone();
    reading.alongside = [&](const media::StereoBlock& block) { gatherer.put(block); };
    reading.alongsideBytesPerFrame = MonoGatherer::kBytesPerFrame;
    static_cast<output::TrackReport&>(report) = analyzeFile(path, reading, progress);
    MonoTrack track = gatherer.thinOut(report.format.sessionRate);
    report.wanted = options_;
    report.pitchHz = options_.pitchHz;
    if (!report.pitchHz) report.pitchHz = findPitch(track, kPitchMode);
    if (report.pitchHz) report.bufferKey = findKey(track, *report.pitchHz, options_.mode);
    return report;
}

}  // namespace app
