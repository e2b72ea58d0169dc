// SPDX-License-Identifier: MIT
#include "beatatlas/dsp.h"
#include "bench/BenchTrack.h"
#include "dsp/ConstantQBank.h"
#include "dsp/IirPassFilter.h"
#include "dsp/RoundingMode.h"

namespace beatatlas::bench {
namespace {

void iirPassFilter(benchmark::State& state) {
    const BenchTrack& track = benchTrack();
    std::vector<float> out(kBlockFrames);
    for (auto _ : state) {
        const TowardZeroScope mode;
        IirPassFilter filter;
        filter.createMidPathFilterB(283.0F, 6000.0F, kRate, 0.7F);
        forEachBlock([&](int from, int count) {
            filter.operate(track.mono.data() + from, out.data(), count);
            benchmark::DoNotOptimize(out.data());
        });
    }
    reportAudio(state, kFrames);
}
BENCHMARK(iirPassFilter)->Unit(benchmark::kMillisecond);

void fft(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<float> re(benchTrack().mono.begin() + kRate, benchTrack().mono.begin() + kRate + n);
    std::vector<float> im(re.size(), 0.0F);
    for (auto _ : state) {
        const TowardZeroScope mode;
        std::vector<float> real = re;
        std::vector<float> imaginary = im;
        fft_less_normalize(n, real.data(), imaginary.data());
        benchmark::DoNotOptimize(real.data());
    }
    reportAudio(state, n);
}
BENCHMARK(fft)->Arg(1024)->Arg(4096)->Unit(benchmark::kMicrosecond);

/** Two octaves from A4, ten seconds at a tenth of the rate, as the pitch detector does for one candidate. */
void constantQBank(benchmark::State& state) {
    constexpr int kLength = 44100;
    constexpr int kHop = 2048;
    const float* samples = benchTrack().mono.data() + kRate;
    for (auto _ : state) {
        const TowardZeroScope mode;
        ConstantQBank bank(24, 440.0F, kRate / 10.0F);
        const int frames = bank.frameCount(kLength, kHop);
        std::vector<float> magnitudes(static_cast<std::size_t>(frames));
        for (int k = 0; k < 24; ++k) bank.magnitudes(k, samples, kHop, frames, magnitudes.data());
        benchmark::DoNotOptimize(magnitudes.data());
    }
    reportAudio(state, kLength, kRate / 10.0);
}
BENCHMARK(constantQBank)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
