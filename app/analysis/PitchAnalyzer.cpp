// SPDX-License-Identifier: MIT
#include "analysis/PitchAnalyzer.h"

#include "analysis/bufferFinders.h"
#include "media/TrackFile.h"
#include "media/FeedSink.h"
#include "media/trackLength.h"

namespace app {

output::PitchReport PitchAnalyzer::analyze(const std::string& path, ProgressLine& progress) const {
    media::TrackDecoder decoder(path);
    const double expected = media::expectedFrames(decoder);
    MonoGatherer gatherer;
    gatherer.reserve(expected);
    media::FeedSink sink([&](media::StereoBlock& block) { gatherer.put(block); },
                         [&](std::int64_t frames) {
                             media::refuseAbove(static_cast<double>(frames));
                             progress.show("decoding",
                                           0.9 * static_cast<double>(frames) / expected);
                         });
    decoder.run(sink);

    output::PitchReport report;
    static_cast<base::TrackSource&>(report) =
        media::usableTrack(path, decoder, sink.frames(), acceptsCutOff_);
    report.frames = static_cast<int>(sink.frames());
    report.options = options_;
    progress.show("listening", 0.9);
    const int rate = report.format.sessionRate;
    MonoTrack track = options_.isFullRate ? gatherer.whole(rate) : gatherer.thinOut(rate);
    report.pitchHz = findPitch(track, options_.mode);
    return report;
}

}  // namespace app
