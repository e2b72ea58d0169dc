// SPDX-License-Identifier: MIT
#include "bench/BenchTrack.h"
#include "dsp/RoundingMode.h"
#include "view/LoudViewMaker.h"
#include "view/ZoomViewMaker.h"

namespace beatatlas::bench {
namespace {

void loudViewMaker(benchmark::State& state) {
    const BenchTrack& track = benchTrack();
    FilteredTrack& filtered = filteredBenchTrack();
    for (auto _ : state) {
        const TowardZeroScope mode;
        LoudViewMaker maker;
        maker.create(kRate, kFrames);
        forEachBlock([&](int from, int count) {
            const peakss::BandSignals bands = filtered.bandsFrom(from);
            maker.analyzePeak(track.mono.data() + from, bands.viewLow, bands.bands[2],
                              bands.bands[3], count);
        });
        maker.analyzeLoudColor(0, maker.loudNum());
        benchmark::DoNotOptimize(maker.loudWave());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(loudViewMaker)->Unit(benchmark::kMillisecond);

void zoomViewMaker(benchmark::State& state) {
    const BenchTrack& track = benchTrack();
    const FilteredTrack& filtered = filteredBenchTrack();
    for (auto _ : state) {
        const TowardZeroScope mode;
        ZoomViewMaker maker;
        maker.create(kRate, kFrames, 150, true);
        forEachBlock([&](int from, int count) {
            maker.putSample(track.interleaved.data() + (2 * from), filtered.bass.data() + from,
                            count);
        });
        benchmark::DoNotOptimize(maker.points());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(zoomViewMaker)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
