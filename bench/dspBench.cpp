// SPDX-License-Identifier: MIT
#include <array>
#include <cmath>
#include <memory>

#include "beatatlas/dsp.h"
#include "bench/BenchTrack.h"
#include "dsp/ConstantQBank.h"
#include "dsp/FilterBank.h"
#include "dsp/IirPassFilter.h"
#include "dsp/RoundingMode.h"
#include "dsp/sampleBlocks.h"

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

/** The sensor's bands and the view's low band, twelve sections. */
struct BandPlan {
    static constexpr int kMostSamples = kBlockFrames;
    static constexpr std::size_t kSignals = 1;
    static constexpr std::array<Cascade, 8> kCascades = [] {
        std::array<Cascade, 8> cascades{};
        cascades.fill({0, 2, Cascade::Output::magnitudes});
        for (const std::size_t unused : {0U, 1U, 2U}) cascades[unused].sections = 1;
        cascades[3].sections = 4;
        return cascades;
    }();
};
constexpr std::array<std::size_t, 5> kUsed = {4, 5, 6, 7, 3};

using Cascades = std::array<IirPassFilter, kUsed.size()>;

void design(Cascades& cascades) {
    constexpr float kQ = 0.70710677F;
    cascades[0].createLowPathFilter(160.0F, kRate, kQ);
    cascades[1].createMidPathFilterM(200.0F, 400.0F, kRate, kQ);
    cascades[2].createHiPathFilter(8000.0F, kRate, kQ);
    cascades[3].createLowPathFilter(220.0F, kRate, kQ);
    cascades[4].createMidPathFilterB(400.0F, 3000.0F, kRate, kQ);
}

/** Twelve sections in their plain form, each waiting for its own last output. */
void sectionsInTurn(benchmark::State& state) {
    const BenchTrack& track = benchTrack();
    std::vector<float> out(kBlockFrames);
    for (auto _ : state) {
        const TowardZeroScope mode;
        Cascades cascades;
        design(cascades);
        forEachBlock([&](int from, int count) {
            for (IirPassFilter& cascade : cascades) {
                cascade.operate(track.mono.data() + from, out.data(), count);
                for (float& value : out) value = std::fabs(value);
                benchmark::DoNotOptimize(out.data());
            }
        });
    }
    reportAudio(state, kFrames);
}
BENCHMARK(sectionsInTurn)->Unit(benchmark::kMillisecond);

/** The same twelve in vector lanes. */
void sectionsInBank(benchmark::State& state) {
    const BenchTrack& track = benchTrack();
    const auto bank = std::make_unique<FilterBank<BandPlan>>();
    for (auto _ : state) {
        const TowardZeroScope mode;
        Cascades cascades;
        design(cascades);
        for (std::size_t c = 0; c < kUsed.size(); ++c)
            for (int s = 0; s < cascades[c].stageCount(); ++s)
                bank->design(kUsed[c], static_cast<std::size_t>(s), cascades[c].stage(s).section());
        forEachBlock([&](int from, int count) {
            widenBlock(track.mono.data() + from, bank->signal(0), count);
            bank->operate(count);
            benchmark::DoNotOptimize(bank->magnitudes(kUsed[0]));
        });
    }
    reportAudio(state, kFrames);
}
BENCHMARK(sectionsInBank)->Unit(benchmark::kMillisecond);

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

/** Two octaves from A4, ten seconds at a tenth of the rate, as the pitch detector does for one
 *  candidate. */
void constantQBank(benchmark::State& state) {
    constexpr int kLength = 44100;
    constexpr int kHop = 2048;
    const float* samples = benchTrack().mono.data() + kRate;
    for (auto _ : state) {
        const TowardZeroScope mode;
        const ConstantQBank bank(24, 440.0F, kRate / 10.0F);
        const int frames = bank.frameCount(kLength, kHop);
        std::vector<float> magnitudes(24 * static_cast<std::size_t>(frames));
        bank.magnitudes(samples, kHop, frames, ConstantQBank::Place::start, magnitudes.data());
        benchmark::DoNotOptimize(magnitudes.data());
    }
    reportAudio(state, kLength, kRate / 10.0);
}
BENCHMARK(constantQBank)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace beatatlas::bench
