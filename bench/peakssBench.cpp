// SPDX-License-Identifier: MIT
#include "bench/BenchTrack.h"
#include "dsp/RoundingMode.h"
#include "peakss/BeatListMaker.h"

namespace beatatlas::bench {
namespace {

void beatSensor(benchmark::State& state) {
    const BenchTrack& track = benchTrack();
    for (auto _ : state) {
        const TowardZeroScope mode;
        peakss::BeatListMaker maker;
        maker.create(kRate, 0, kFrames);
        forEachBlock(
            [&](int from, int count) { maker.put(track.mono.data() + from, count, nullptr); });
        benchmark::DoNotOptimize(maker.list().data());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(beatSensor)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
