// SPDX-License-Identifier: MIT
#include "analysis/PitchAnalyzer.h"

#include "analysis/FeedSink.h"
#include "analysis/bufferFinders.h"
#include "analysis/trackLength.h"

namespace app {

PitchReport PitchAnalyzer::analyze(const std::string& path, ProgressLine& progress) const {
    TrackDecoder decoder(path);
    const double expected = expectedFrames(decoder);
    MonoGatherer gatherer;
    gatherer.reserve(expected);
    FeedSink sink([&](StereoBlock& block) { gatherer.put(block); },
                  [&](std::int64_t frames) {
                      refuseAbove(static_cast<double>(frames));
                      progress.show("decoding", 0.9 * static_cast<double>(frames) / expected);
                  });
    decoder.run(sink);

    PitchReport report;
    static_cast<TrackFile&>(report) = usableTrack(path, decoder, sink.frames(), acceptsCutOff_);
    report.frames = static_cast<int>(sink.frames());
    report.options = options_;
    progress.show("listening", 0.9);
    const int rate = report.format.sessionRate;
    MonoTrack track = options_.isFullRate ? gatherer.whole(rate) : gatherer.thinOut(rate);
    report.pitchHz = findPitch(track, options_.mode);
    return report;
}

}  // namespace app
