// SPDX-License-Identifier: MIT
// The whole session as a host drives it, and the filters that its analysers share.
#include "beatatlas/beatatlas.hpp"
#include "bench/BenchTrack.h"
#include "bench/FilteredTrack.h"
#include "bench/sessionRun.h"
#include "dsp/RoundingMode.h"

namespace beatatlas::bench {
namespace {

constexpr int kPhraseBeats = 32;

void session(benchmark::State& state, CreateSession create, bool withKey) {
    test::StereoTrack track = benchTrack().stereo;
    for (auto _ : state) runSession(create, track, kFrames, withKey);
    reportAudio(state, kFrames);
}

/** What a session with everything in it filters for its analysers. */
void trackFilters(benchmark::State& state) {
    const BenchTrack& track = benchTrack();
    for (auto _ : state) {
        const TowardZeroScope mode;
        TrackFilters filters;
        createFilters(filters, kRate);
        forEachBlock([&](int from, int count) {
            filters.operate(track.mono.data() + from, track.interleaved.data() + (2 * from), count,
                            nullptr);
            benchmark::DoNotOptimize(filters.bass());
        });
    }
    reportAudio(state, kFrames);
}
BENCHMARK(trackFilters)->Unit(benchmark::kMillisecond);

void sessionConstant(benchmark::State& state) {
    session(state, createWholeSession, true);
}
BENCHMARK(sessionConstant)->Unit(benchmark::kMillisecond);

void sessionVaried(benchmark::State& state) {
    session(
        state,
        [](int frames) { return BA_CreateVaried44k(frames, kPhraseBeats, true, true, true); },
        true);
}
BENCHMARK(sessionVaried)->Unit(benchmark::kMillisecond);

void sessionSimple(benchmark::State& state) {
    session(
        state, [](int frames) { return BA_CreateSimple44k(frames, 0, true, true, true); }, true);
}
BENCHMARK(sessionSimple)->Unit(benchmark::kMillisecond);

void sessionBeatsOnly(benchmark::State& state) {
    session(
        state, [](int frames) { return BA_Create44k(frames, kPhraseBeats, false, false, false); },
        false);
}
BENCHMARK(sessionBeatsOnly)->Unit(benchmark::kMillisecond);

void sessionViewsOnly(benchmark::State& state) {
    session(
        state, [](int frames) { return BA_Create44k(frames, 0, true, true, false); }, false);
}
BENCHMARK(sessionViewsOnly)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
