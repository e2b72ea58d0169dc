// SPDX-License-Identifier: MIT
#include "analysis/TrackAnalyzer.h"

#include "analysis/Analysis.h"
#include "analysis/FeedSink.h"
#include "analysis/trackLength.h"
#include "audio/TrackDecoder.h"
#include "io/errors.h"

namespace app {

// The passes: measure, for the key alone the levels, and the analysis proper.
TrackReport TrackAnalyzer::analyze(const std::string& path, ProgressLine& progress,
                                   const Feed& alongside) const {
    TrackReport report;
    report.path = path;
    report.options = options_;
    const double passes = options_.wantsKey ? 3.0 : 2.0;
    double pass = 0.0;
    const auto stage = [&](const char* name) {
        const double done = pass++;
        return [&progress, name, done, passes](double fraction) {
            progress.show(name, (done + fraction) / passes);
        };
    };

    const int frames = measure(report, alongside, stage("measuring"));
    Analysis analysis(options_, report.format.sessionRate, frames);
    if (analysis.needsLevels()) {
        feedTrack(
            report, frames, [&](StereoBlock& block) { analysis.putLevels(block); },
            stage("levels"));
    }
    feedTrack(
        report, frames, [&](StereoBlock& block) { analysis.put(block); }, stage("analysing"));
    if (!analysis.isFinished())
        throw TrackError("could not be analysed: there is not enough memory");
    report.analysis = analysis.result();
    return report;
}

int TrackAnalyzer::measure(TrackFile& file, const Feed& alongside, const ShowFraction& show) const {
    TrackDecoder decoder(file.path);
    const double expected = expectedFrames(decoder);
    FeedSink counter(alongside, [&](std::int64_t frames) {
        refuseAbove(static_cast<double>(frames));
        show(static_cast<double>(frames) / expected);
    });
    decoder.run(counter);
    file = usableTrack(file.path, decoder, counter.frames(), acceptsCutOff_);
    return static_cast<int>(counter.frames());
}

void TrackAnalyzer::feedTrack(const TrackReport& report, int frames, const Feed& feed,
                              const ShowFraction& show) {
    TrackDecoder decoder(report.path);
    refuseUnlessUnchanged(decoder, report.state);
    FeedSink sink(feed, [&](std::int64_t fed) { show(static_cast<double>(fed) / frames); });
    decoder.run(sink);
    refuseUnlessUnchanged(decoder, report.state);
    if (sink.frames() != frames)
        throw TrackError("did not give the same music twice: its decoder cannot be relied on");
}

}  // namespace app
