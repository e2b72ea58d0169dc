// SPDX-License-Identifier: MIT
#include "analysis/TrackAnalyzer.h"

#include <limits>

#include "analysis/Analysis.h"
#include "analysis/FeedSink.h"
#include "io/errors.h"

namespace app {

namespace {

constexpr std::int64_t kMostFrames = std::numeric_limits<int>::max();
constexpr double kLowestSessionRate = 44100.0;

void refuseAbove(double frames) {
    if (frames <= static_cast<double>(kMostFrames)) return;
    throw TrackError(
        "is too long: more than 2,147,483,647 frames (12.4 hours at 48,000 Hz) cannot be analysed");
}

void refuseIfChanged(const TrackDecoder& decoder, const FileState& before) {
    if (decoder.fileState() != before) throw TrackError("has changed while it was being read");
}

}  // namespace

// The passes: measure, for the key alone the levels, and the analysis proper.
TrackReport TrackAnalyzer::analyze(const std::string& path, ProgressLine& progress) const {
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

    const int frames = measure(report, stage("measuring"));
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

int TrackAnalyzer::measure(TrackReport& report, const ShowFraction& show) const {
    TrackDecoder decoder(report.path);
    report.file = decoder.fileState();
    const double declared = decoder.declaredSeconds().value_or(0.0);
    refuseAbove(declared * kLowestSessionRate);
    const double expected = std::max(1.0, declared * kLowestSessionRate);
    FeedSink counter([](StereoBlock&) {},
                     [&](std::int64_t frames) {
                         refuseAbove(static_cast<double>(frames));
                         show(static_cast<double>(frames) / expected);
                     });
    decoder.run(counter);
    refuseIfChanged(decoder, report.file);
    report.format = decoder.format();
    report.isCutOff = decoder.isCutOff();
    report.damagedPackets = decoder.tally().damagedPackets;
    refuseUnlessUsable(report, decoder.tally(), counter.frames());
    return static_cast<int>(counter.frames());
}

void TrackAnalyzer::refuseUnlessUsable(const TrackReport& report, const DecodeTally& tally,
                                       std::int64_t frames) const {
    if (frames == 0 && tally.isLastPacketDamaged)
        throw TrackError("is damaged: nothing in it can be decoded");
    if (frames == 0)
        throw TrackError(report.isCutOff ? "is cut off: no sound is left in it" : "holds no audio");
    if (report.isCutOff && !acceptsCutOff_) {
        throw TrackError(
            "is cut off: it ends before the track does (--partial analyses what is there)");
    }
}

void TrackAnalyzer::feedTrack(const TrackReport& report, int frames, const Feed& feed,
                              const ShowFraction& show) {
    TrackDecoder decoder(report.path);
    refuseIfChanged(decoder, report.file);
    FeedSink sink(feed, [&](std::int64_t fed) { show(static_cast<double>(fed) / frames); });
    decoder.run(sink);
    refuseIfChanged(decoder, report.file);
    if (sink.frames() != frames)
        throw TrackError("did not give the same music twice: its decoder cannot be relied on");
}

}  // namespace app
