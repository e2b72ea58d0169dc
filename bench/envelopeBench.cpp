// SPDX-License-Identifier: MIT
#include "bench/BenchTrack.h"
#include "dsp/RoundingMode.h"
#include "envelope/SimpleEnvelopeMaker.h"
#include "envelope/UnitBeatAdjust.h"
#include "envelope/UnitEnvelopeMaker.h"

namespace beatatlas::bench {
namespace {

template <typename Maker>
void feedWholeTrack(Maker& maker) {
    const std::int16_t* frames = benchTrack().interleaved.data();
    maker.create(kRate, kFrames);
    forEachBlock([&](int from, int count) { maker.putSample(frames + (2 * from), count); });
}

template <typename Maker>
void feed(benchmark::State& state) {
    benchTrack();
    for (auto _ : state) {
        const TowardZeroScope mode;
        Maker maker;
        feedWholeTrack(maker);
        benchmark::ClobberMemory();
    }
    reportAudio(state, kFrames);
}
BENCHMARK(feed<SimpleEnvelopeMaker>)->Name("simpleEnvelopeMaker")->Unit(benchmark::kMillisecond);
BENCHMARK(feed<UnitEnvelopeMaker>)->Name("unitEnvelopeMaker")->Unit(benchmark::kMillisecond);
BENCHMARK(feed<UnitBeatAdjust>)->Name("unitBeatAdjust")->Unit(benchmark::kMillisecond);

void simpleEnvelopeAnalyze(benchmark::State& state) {
    const TowardZeroScope mode;
    SimpleEnvelopeMaker maker;
    feedWholeTrack(maker);
    for (auto _ : state) {
        peakss::BeatList beats = benchTrack().beats;
        benchmark::DoNotOptimize(maker.analyze(kBpm, beats));
    }
    reportAudio(state, kFrames);
}
BENCHMARK(simpleEnvelopeAnalyze)->Unit(benchmark::kMillisecond);

/** An analysis marks pulses, which would affect the next one, so each analysis gets a new maker. */
void unitEnvelopeAnalyze(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        {
            const TowardZeroScope mode;
            UnitEnvelopeMaker maker;
            feedWholeTrack(maker);
            peakss::BeatList beats = benchTrack().beats;
            state.ResumeTiming();
            maker.analyze(kBpm, beats, false);
            benchmark::DoNotOptimize(beats.data());
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    reportAudio(state, kFrames);
}
BENCHMARK(unitEnvelopeAnalyze)->Iterations(8)->Unit(benchmark::kMillisecond);

void unitBeatAdjustAnalyze(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        {
            const TowardZeroScope mode;
            UnitBeatAdjust adjust;
            feedWholeTrack(adjust);
            peakss::BeatList beats = benchTrack().beats;
            float bpm = kBpm;
            state.ResumeTiming();
            adjust.analyze(bpm, beats);
            benchmark::DoNotOptimize(bpm);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    reportAudio(state, kFrames);
}
BENCHMARK(unitBeatAdjustAnalyze)->Iterations(4)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
