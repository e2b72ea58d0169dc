// SPDX-License-Identifier: MIT
#include "session/KeyBandRunner.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "dsp/isConstant.h"
#include "dsp/lanes/BankSteps.h"
#include "dsp/lanes/sampleLanes.h"
#include "key/keyBandLanes.h"

namespace beatatlas {

KeyBandRunner::KeyBandRunner(KeyRankMaker& keyRankMaker, int most)
    : keyRankMaker_(keyRankMaker), key_(keyRankMaker.waiting(most)) {
    // A constant signal is left to the filter itself, which need not compute it.
    if (key_.n <= KeyBandFilter::kLag || isConstant(key_.frames, 2 * key_.n)) key_.n = 0;
    if (key_.n == 0 || key_.filter->isUnderWay()) return;
    key_.filter->begin(key_.frames);
    take(KeyBandFilter::kLag, nullptr, 0);
}

void KeyBandRunner::take(int frames, const std::int16_t* samples, int n) {
    keyRankMaker_.takeFiltered(frames, samples, n);
    key_.frames += 2 * std::ptrdiff_t{frames};
    key_.n -= frames;
}

/** The steps of a block, `count` steps of the key's filter beside them. */
template <std::size_t kWidth>
struct KeyBandRunner::Kernel {
    using Steps = BankSteps<SessionCascades, kWidth>;

    BEATATLAS_LANES static void run(Block* block, int n, const BandBlock* key,
                                    std::int16_t* samples, int count) {
        double signal[SessionCascades::kMostSamples];
        MonoOfBlock<Steps::kLanes>::run(key->frames, signal, count);
        KeyBandFilter::Wavefront<kWidth> sections;
        sections.load(*key->filter);
        Steps::run(
            *block, n, count, [&](int i) __attribute__((always_inline)) {
                signal[i] = sections.step(signal[i]);
            });
        sections.store(*key->filter);
        LowHalvesOfBlock<Steps::kLanes>::run(signal, samples, count);
    }
};

void KeyBandRunner::operator()(Block& block, int n) {
    std::array<std::int16_t, SessionCascades::kMostSamples> samples;
    runInLanes<Kernel>(&block, n, static_cast<const BandBlock*>(&key_), samples.data(), key_.n);
    take(key_.n, samples.data(), key_.n);
}

}  // namespace beatatlas
