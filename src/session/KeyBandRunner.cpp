// SPDX-License-Identifier: MIT
#include "session/KeyBandRunner.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "dsp/filterBankKernel.h"
#include "dsp/isConstant.h"
#include "dsp/sampleLanes.h"
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

/** The steps of one tile, `count` steps of the key's filter beside them. */
template <std::size_t kWidth>
struct KeyBandRunner::Kernel {
    static constexpr std::size_t kLanes = FilterBankSteps<kWidth>::kLanes;

    BEATATLAS_LANES static void run(FilterBankLanes* bank, FilterBankTile* tile,
                                    const FilterBankStretch* steps, const BandBlock* key,
                                    std::int16_t* samples, int count) {
        double signal[FilterBankTile::kSteps];
        MonoOfBlock<kLanes>::run(key->frames, signal, count);
        KeyBandFilter::Wavefront<kWidth> sections;
        sections.load(*key->filter);
        FilterBankSteps<kWidth>::run(
            *bank, *tile, *steps, count, [&](int i) __attribute__((always_inline)) {
                signal[i] = sections.step(signal[i]);
            });
        sections.store(*key->filter);
        LowHalvesOfBlock<kLanes>::run(signal, samples, count);
    }
};

void KeyBandRunner::run(FilterBankLanes& lanes, FilterBankTile& tile,
                        const FilterBankStretch& stretch) {
    const int count = std::min({key_.n, stretch.steps, FilterBankTile::kSteps});
    if (count == 0) return FilterBankRunner::run(lanes, tile, stretch);
    std::array<std::int16_t, FilterBankTile::kSteps> samples;
    runInLanes<Kernel>(&lanes, &tile, &stretch, static_cast<const BandBlock*>(&key_),
                       samples.data(), count);
    take(count, samples.data(), count);
}

}  // namespace beatatlas
