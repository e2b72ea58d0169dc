// SPDX-License-Identifier: MIT
#include "bench/BenchTrack.h"

#include "bench/Improvisation.h"

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

// Bars of four beats; a chorus is everything at once.
std::vector<test::Section> songSections() {
    const test::InstrumentLevels chorus;
    const test::InstrumentLevels intro = {
        .kick = 0.0, .snare = 0.0, .hats = 0.09, .bass = 0.17, .chords = 0.5};
    const test::InstrumentLevels verse = {
        .kick = 0.36, .snare = 0.0, .hats = 0.0, .bass = 0.25, .chords = 0.3};
    const test::InstrumentLevels rest = {
        .kick = 0.0, .snare = 0.0, .hats = 0.0, .bass = 0.25, .chords = 0.6};
    return {{0, intro},   {16, verse}, {32, chorus},  {64, rest},  {80, chorus},
            {112, verse}, {128, rest}, {136, chorus}, {150, intro}};
}

test::TrackPlan songPlan(double seconds) {
    test::TrackPlan plan;
    plan.sampleRate = kRate;
    plan.lengthFrames = static_cast<std::int64_t>(seconds * kRate);
    plan.bpm = static_cast<double>(kBpm);
    plan.introFrames = 2 * kRate;
    plan.stereoWidth = 0.7;
    plan.mode = test::KeyMode::minor;
    plan.progression = {0, 5, 3, 4, 0, 2, 3, 4};
    plan.level = 0.5;
    plan.kickPattern = test::KickPattern::firstAndThird;
    plan.sections = songSections();
    return plan;
}

test::StereoTrack play(const test::TrackSynth& synth) {
    test::StereoTrack track = synth.renderAll();
    improviseOver(track, {.sampleRate = kRate,
                          .bpm = synth.plan().bpm,
                          .firstFrame = static_cast<double>(synth.plan().introFrames),
                          .tonic = synth.plan().tonic});
    return track;
}

BenchTrack makeTrack() {
    const test::TrackSynth synth(songPlan(kSeconds));
    BenchTrack track;
    track.stereo = play(synth);
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

test::StereoTrack makeSong(double seconds) {
    return play(test::TrackSynth(songPlan(seconds)));
}

const BenchTrack& benchTrack() {
    static const BenchTrack track = makeTrack();
    return track;
}

FilteredTrack& filteredBenchTrack() {
    static FilteredTrack filtered(kRate, benchTrack().mono, benchTrack().interleaved);
    return filtered;
}

void reportAudio(benchmark::State& state, double frames, double rate) {
    using benchmark::Counter;
    const double total = frames * static_cast<double>(state.iterations());
    state.counters["audio_s_per_cpu_s"] = Counter(total / rate, Counter::kIsRate);
    state.counters["cpu_s_per_frame"] = Counter(total, Counter::kIsRate | Counter::kInvert);
}

}  // namespace beatatlas::bench
