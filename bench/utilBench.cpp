// SPDX-License-Identifier: MIT
#include "beatatlas/utilities.h"
#include "bench/BenchTrack.h"
#include "dsp/RoundingMode.h"

namespace beatatlas::bench {
namespace {

void resampler(benchmark::State& state) {
    std::vector<float> in = benchTrack().mono;
    std::vector<float> out(in.size() / 10);
    for (auto _ : state) {
        const TowardZeroScope mode;
        resample2(out.data(), static_cast<long>(out.size()), in.data(),
                  static_cast<long>(in.size()), 10.0F, 10, 0);
        benchmark::DoNotOptimize(out.data());
    }
    reportAudio(state, kFrames);
}
BENCHMARK(resampler)->Unit(benchmark::kMillisecond);

void beatCutter(benchmark::State& state) {
    constexpr int kLength = 10 * kRate;
    std::vector<float> in(benchTrack().mono.begin(), benchTrack().mono.begin() + kLength);
    std::vector<float> out(in.size());
    for (auto _ : state) {
        const TowardZeroScope mode;
        CutBeats(out.data(), in.data(), kLength, kRate, 1, static_cast<int>(state.range(0)));
        benchmark::DoNotOptimize(out.data());
    }
    reportAudio(state, kLength);
}
BENCHMARK(beatCutter)->Arg(0)->Arg(4)->Unit(benchmark::kMillisecond);

/** Arguments: the factor by which the track is decimated, and the mode. */
void pitchDetector(benchmark::State& state) {
    const auto step = static_cast<int>(state.range(0));
    const long length = kFrames / 4 / step;
    std::vector<float> samples = benchTrack().mono;
    if (step > 1)
        resample2(samples.data(), length, samples.data(), static_cast<long>(samples.size()), 1.0F,
                  step, 0);
    const float rate = static_cast<float>(kRate) / static_cast<float>(step);
    for (auto _ : state) {
        const TowardZeroScope mode;
        benchmark::DoNotOptimize(PitchDetect(samples.data(), static_cast<int>(length), rate, 1,
                                             static_cast<int>(state.range(1))));
    }
    reportAudio(state, static_cast<double>(length), static_cast<double>(rate));
}
BENCHMARK(pitchDetector)->Args({1, 0})->Args({10, 0})->Args({10, 4})->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
