// SPDX-License-Identifier: MIT
#include "session/TrackFilters.h"

#include "dsp/VectorForm.h"
#include "peakss/sensing/designBands.h"
#include "session/KeyBandRunner.h"

namespace beatatlas {

void TrackFilters::create(int rate, int blockLen, const Levels& levels) {
    peakss::designSensorBank(bank_, static_cast<float>(rate));
    const auto frames = static_cast<std::size_t>(blockLen);
    for (std::size_t band = 0; band < kBands; ++band) {
        bandBlocks_[band].assign(frames, 0.0F);
        bands_[band] = bandBlocks_[band].data();
    }
    viewLow_.assign(frames, 0.0F);
    createLevel(FilterBank::kTwice, levels.pulses, frames);
    createLevel(FilterBank::kOnce, levels.bassLine, frames);
    createLevel(FilterBank::kWhole, levels.bass, frames);
}

void TrackFilters::createLevel(FilterBank::Level level, const SecondOrderSection* filter,
                               std::size_t frames) {
    std::vector<double>& levelBlock = levels_[static_cast<std::size_t>(level)];
    levelBlock.clear();
    if (filter == nullptr) return;
    bank_.designLevel(level, *filter);
    levelBlock.assign(frames, 0.0);
}

void TrackFilters::operate(const float* mono, const std::int16_t* stereo, int n,
                           KeyRankMaker* key) {
    FilterBank::LevelOutputs levels{};
    for (std::size_t level = 0; level < levels_.size(); ++level)
        if (!levels_[level].empty()) levels[level] = levels_[level].data();
    const FilterBank::Outputs outputs = peakss::sensorBankOutputs(bands());
    // Both at once need the registers of AVX-512: with fewer, one after the other takes no longer.
    if (key == nullptr || vectorForm() != VectorForm::avx512)
        return bank_.operate(mono, stereo, outputs, levels, n);
    KeyBandRunner runner(*key, n);
    bank_.operate(mono, stereo, outputs, levels, n, runner);
}

}  // namespace beatatlas
