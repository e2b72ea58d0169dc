// SPDX-License-Identifier: MIT
#include "analysis/KeyAnalyzer.h"

#include "analysis/bufferFinders.h"

namespace app {

namespace {

constexpr int kPitchMode = 0;

AnalysisOptions keyAlone() {
    AnalysisOptions options;
    options.tempo = TempoMode::off;
    options.wantsWaves = false;
    return options;
}

}  // namespace

KeyReport KeyAnalyzer::analyze(const std::string& path, ProgressLine& progress) const {
    KeyReport report;
    MonoGatherer gatherer;
    static_cast<TrackReport&>(report) =
        TrackAnalyzer(keyAlone(), acceptsCutOff_).analyze(path, progress, [&](StereoBlock& block) {
            gatherer.put(block);
        });
    MonoTrack track = gatherer.thinOut(report.format.sessionRate);
    report.wanted = options_;
    report.pitchHz = options_.pitchHz;
    if (!report.pitchHz) report.pitchHz = findPitch(track, kPitchMode);
    if (report.pitchHz) report.bufferKey = findKey(track, *report.pitchHz, options_.mode);
    return report;
}

}  // namespace app
