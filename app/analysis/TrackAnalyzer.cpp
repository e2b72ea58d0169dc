// SPDX-License-Identifier: MIT
#include "analysis/TrackAnalyzer.h"

#include "analysis/Analysis.h"
#include "base/errors.h"
#include "media/FeedSink.h"
#include "media/TrackDecoder.h"
#include "media/trackLength.h"

namespace app {

// The passes: measure, for the key alone the levels, and the analysis proper.
output::TrackReport TrackAnalyzer::analyze(const std::string& path, ProgressLine& progress,
                                           const Feed& alongside) const {
    const double passes = options_.wantsKey ? 3.0 : 2.0;
    double pass = 0.0;
    const auto stage = [&](const char* name) {
        const double done = pass++;
        return [&progress, name, done, passes](double fraction) {
            progress.show(name, (done + fraction) / passes);
        };
    };

    int frames = 0;
    const media::TrackFile file = measure(path, alongside, stage("measuring"), frames);
    output::TrackReport report{file, options_, {}};
    Analysis analysis(options_, report.format.sessionRate, frames);
    if (analysis.needsLevels()) {
        feedTrack(
            file, frames, [&](media::StereoBlock& block) { analysis.putLevels(block); },
            stage("levels"));
    }
    feedTrack(
        file, frames, [&](media::StereoBlock& block) { analysis.put(block); }, stage("analysing"));
    if (!analysis.isFinished())
        throw base::TrackError("could not be analysed: there is not enough memory");
    report.analysis = analysis.result();
    return report;
}

media::TrackFile TrackAnalyzer::measure(const std::string& path, const Feed& alongside,
                                        const ShowFraction& show, int& frames) const {
    media::TrackDecoder decoder(path);
    const double expected = media::expectedFrames(decoder);
    media::FeedSink counter(alongside, [&](std::int64_t counted) {
        media::refuseAbove(static_cast<double>(counted));
        show(static_cast<double>(counted) / expected);
    });
    decoder.run(counter);
    const std::int64_t counted = counter.frames();
    frames = static_cast<int>(counted);
    return media::usableTrack(path, decoder, counted, acceptsCutOff_);
}

void TrackAnalyzer::feedTrack(const media::TrackFile& file, int frames, const Feed& feed,
                              const ShowFraction& show) {
    media::TrackDecoder decoder(file.path);
    media::refuseUnlessUnchanged(decoder, file.state);
    media::FeedSink sink(feed, [&](std::int64_t fed) { show(static_cast<double>(fed) / frames); });
    decoder.run(sink);
    media::refuseUnlessUnchanged(decoder, file.state);
    if (sink.frames() != frames)
        throw base::TrackError(
            "did not give the same music twice: its decoder cannot be relied on");
}

}  // namespace app
