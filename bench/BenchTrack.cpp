// SPDX-License-Identifier: MIT
#include "bench/BenchTrack.h"

namespace beatatlas::bench {

namespace {

peakss::BeatList gridOf(const test::TrackSynth& synth) {
    peakss::BeatList beats;
    for (const test::TrueBeat& beat : synth.beats())
        beats.push_back({.pos = static_cast<std::int32_t>(beat.frame),
                         .interval = 60000.0F / kBpm,
                         .group = beat.number});
    return beats;
}

BenchTrack makeTrack() {
    test::TrackPlan plan;
    plan.sampleRate = kRate;
    plan.lengthFrames = kFrames;
    plan.bpm = static_cast<double>(kBpm);
    plan.introFrames = 2 * kRate;
    plan.stereoWidth = 0.7;
    plan.mode = test::KeyMode::minor;
    const test::TrackSynth synth(plan);
    BenchTrack track;
    track.stereo = synth.renderAll();
    track.beats = gridOf(synth);
    for (std::size_t i = 0; i < track.stereo.left.size(); ++i) {
        const float left = track.stereo.left[i];
        const float right = track.stereo.right[i];
        track.mono.push_back((left + right) / 65536.0F);
        track.interleaved.push_back(static_cast<std::int16_t>(left));
        track.interleaved.push_back(static_cast<std::int16_t>(right));
    }
    return track;
}

}  // namespace

const BenchTrack& benchTrack() {
    static const BenchTrack track = makeTrack();
    return track;
}

void reportAudio(benchmark::State& state, double frames, double rate) {
    using benchmark::Counter;
    const double total = frames * static_cast<double>(state.iterations());
    state.counters["audio_s_per_cpu_s"] = Counter(total / rate, Counter::kIsRate);
    state.counters["cpu_s_per_frame"] = Counter(total, Counter::kIsRate | Counter::kInvert);
}

}  // namespace beatatlas::bench
