// SPDX-License-Identifier: MIT
#include "beatatlas/utilities.h"
#include "bench/BenchTrack.h"
#include "dsp/RoundingMode.h"
#include "key/KeyRankMaker.h"
#include "session/PreChecker.h"

namespace beatatlas::bench {
namespace {

void preChecker(benchmark::State& state) {
    const BenchTrack& track = benchTrack();
    for (auto _ : state) {
        const TowardZeroScope mode;
        PreChecker checker;
        forEachBlock([&](int from, int count) {
            checker.putSample(track.stereo.left.data() + from, track.stereo.right.data() + from,
                              count);
        });
        benchmark::DoNotOptimize(checker.loudCount());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(preChecker)->Unit(benchmark::kMillisecond);

void keyRankMaker(benchmark::State& state) {
    const BenchTrack& track = benchTrack();
    PreChecker checker;
    checker.putSample(track.stereo.left.data(), track.stereo.right.data(), kFrames);
    for (auto _ : state) {
        const TowardZeroScope mode;
        KeyRankMaker maker;
        maker.create(kRate, kFrames);
        maker.setPreCheckData(checker.loudCount(), checker.loudSum(), checker.loudMax(),
                              checker.quietCount(), checker.quietSum(), checker.quietMax());
        forEachBlock([&](int from, int count) {
            maker.putSample(track.interleaved.data() + (2 * from), count);
        });
        benchmark::DoNotOptimize(maker.getMainKey());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(keyRankMaker)->Unit(benchmark::kMillisecond);

/** Over 40 s, resampled to a tenth of the rate. */
void keyCodeScale(benchmark::State& state) {
    constexpr long kLength = 40 * kRate / 10;
    std::vector<float> in = benchTrack().mono;
    std::vector<float> thinned(static_cast<std::size_t>(kLength));
    resample2(thinned.data(), kLength, in.data(), static_cast<long>(in.size()), 10.0F, 10, 0);
    for (auto _ : state) {
        const TowardZeroScope mode;
        benchmark::DoNotOptimize(KeyCodeScale(nullptr, thinned.data(), kLength, kRate / 10.0F,
                                              440.0F, 1, static_cast<int>(state.range(0)),
                                              nullptr));
    }
    reportAudio(state, kLength, kRate / 10.0);
}
BENCHMARK(keyCodeScale)->Arg(0)->Arg(3)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
