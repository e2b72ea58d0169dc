// SPDX-License-Identifier: MIT
#include "bench/BenchTrack.h"
#include "bench/sessionRun.h"
#include "dsp/RoundingMode.h"
#include "peakss/BeatInfoAnalyzer.h"
#include "peakss/BeatListMaker.h"
#include "view/LoudViewMaker.h"

namespace beatatlas::bench {
namespace {

void sense(peakss::BeatListMaker& maker, LVMakeBase* loudView) {
    const BenchTrack& track = benchTrack();
    maker.create(kRate, 0, kFrames);
    forEachBlock(
        [&](int from, int count) { maker.put(track.mono.data() + from, count, loudView); });
}

void beatSensor(benchmark::State& state) {
    benchTrack();
    for (auto _ : state) {
        const TowardZeroScope mode;
        peakss::BeatListMaker maker;
        sense(maker, nullptr);
        benchmark::DoNotOptimize(maker.list().data());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(beatSensor)->Unit(benchmark::kMillisecond);

/** As in a session: the loudness wave uses the sensor's bands. */
void beatSensorAndLoudView(benchmark::State& state) {
    benchTrack();
    for (auto _ : state) {
        const TowardZeroScope mode;
        peakss::BeatListMaker maker;
        LoudViewMaker loudView;
        loudView.create(kRate, kFrames);
        sense(maker, &loudView);
        benchmark::DoNotOptimize(loudView.loudWave());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(beatSensorAndLoudView)->Unit(benchmark::kMillisecond);

/** From the candidates to the grid, at a constant tempo and with phrases of 32 beats. */
void beatListAnalysis(benchmark::State& state) {
    const QuietOutput quiet;
    const TowardZeroScope mode;
    peakss::BeatListMaker maker;
    sense(maker, nullptr);
    for (auto _ : state) {
        peakss::BeatList candidates = maker.list();
        peakss::BeatList grid;
        peakss::BeatInfoAnalyzeInfo info{maker.bandNum(), &candidates};
        peakss::BeatInfoAnalyzer analyzer;
        analyzer.setSamplingRate(kRate);
        benchmark::DoNotOptimize(analyzer.analyze(&info, grid, kFrames, 4, 16, 12, false));
    }
    reportAudio(state, kFrames);
}
BENCHMARK(beatListAnalysis)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
