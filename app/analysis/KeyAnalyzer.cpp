// SPDX-License-Identifier: MIT
#include "analysis/KeyAnalyzer.h"

#include "analysis/TrackAnalyzer.h"
#include "analysis/bufferFinders.h"

namespace app {

namespace {

constexpr int kPitchMode = 0;

base::AnalysisOptions keyAlone() {
    base::AnalysisOptions options;
    options.tempo = base::TempoMode::off;
    options.wantsWaves = false;
    return options;
}

}  // namespace

output::KeyReport KeyAnalyzer::analyze(const std::string& path, ProgressLine& progress) const {
    output::KeyReport report;
    MonoGatherer gatherer;
    static_cast<output::TrackReport&>(report) =
        TrackAnalyzer(keyAlone(), acceptsCutOff_)
            .analyze(path, progress, [&](media::StereoBlock& block) { gatherer.put(block); });
    MonoTrack track = gatherer.thinOut(report.format.sessionRate);
    report.wanted = options_;
    report.pitchHz = options_.pitchHz;
    if (!report.pitchHz) report.pitchHz = findPitch(track, kPitchMode);
    if (report.pitchHz) report.bufferKey = findKey(track, *report.pitchHz, options_.mode);
    return report;
}

}  // namespace app
