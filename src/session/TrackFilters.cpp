// SPDX-License-Identifier: MIT
#include "session/TrackFilters.h"

#include "peakss/bandDesigns.h"

namespace beatatlas {

void TrackFilters::create(int rate, int blockLen, const Levels& levels) {
    peakss::designSensorBank(bank_, static_cast<float>(rate));
    bank_.designLevel(FilterBank::kTwice, levels.pulses);
    bank_.designLevel(FilterBank::kOnce, levels.bassLine);
    bank_.designLevel(FilterBank::kWhole, levels.bass);
    const auto frames = static_cast<std::size_t>(blockLen);
    for (std::size_t band = 0; band < kBands; ++band) {
        bandBlocks_[band].assign(frames, 0.0F);
        bands_[band] = bandBlocks_[band].data();
    }
    viewLow_.assign(frames, 0.0F);
    for (std::vector<double>& level : levels_) level.assign(frames, 0.0);
}

void TrackFilters::operate(const float* mono, const std::int16_t* stereo, int n) {
    bank_.operate(mono, stereo, peakss::sensorBankOutputs(bands()),
                  {levels_[0].data(), levels_[1].data(), levels_[2].data()}, n);
}

}  // namespace beatatlas
