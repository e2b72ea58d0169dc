// SPDX-License-Identifier: MIT
#include "analysis/PitchAnalyzer.h"

#include "analysis/bufferFinders.h"
#include "media/FeedSink.h"
#include "media/OverloadMeter.h"
#include "media/TrackFile.h"
#include "media/trackLength.h"

namespace app {

namespace {

constexpr double kDecodingShare = 0.9;  // of the work, for the progress line

}  // namespace

output::PitchReport PitchAnalyzer::analyze(const std::string& path, ProgressLine& progress) const {
    media::TrackDecoder decoder(path);
    media::refuseTooLong(decoder);
    const double expected = media::expectedFrames(decoder);
    MonoGatherer gatherer;
    gatherer.reserve(expected);
    const auto show = [&](double fraction) {
        progress.show(fraction, decoder.declaredSeconds().value_or(0.0));
    };
    media::OverloadMeter meter;
    const auto take = [&](const media::StereoBlock& block) {
        meter.put(block);
        gatherer.put(block);
    };
    media::FeedSink sink(take, [&](std::int64_t frames) {
        media::refuseAbove(static_cast<double>(frames));
        show(kDecodingShare * static_cast<double>(frames) / expected);
    });
    decoder.run(sink);

    output::PitchReport report;
    static_cast<base::TrackSource&>(report) =
        media::usableTrack(path, decoder, sink.frames(), acceptsCutOff_);
    report.overload = meter.overload();
    report.frames = sink.frames();
    report.options = options_;
    show(kDecodingShare);
    const int rate = report.format.sessionRate;
    MonoTrack track = options_.isFullRate ? gatherer.whole(rate) : gatherer.thinOut(rate);
    report.pitchHz = findPitch(track, options_.mode);
    return report;
}

}  // namespace app
