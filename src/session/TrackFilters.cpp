// SPDX-License-Identifier: MIT
#include "session/TrackFilters.h"

#include <cassert>
#include <cstddef>

#include "dsp/IirPassFilter.h"
#include "dsp/lanes/VectorForm.h"
#include "dsp/sampleBlocks.h"
#include "peakss/sensing/designBands.h"
#include "session/KeyBandRunner.h"
#include "view/LVMakeBase.h"

namespace beatatlas {

namespace {

using Bank = TrackFilters::Bank;

void designCascade(Bank& bank, std::size_t cascade, const IirPassFilter& filter) {
    for (int s = 0; s < filter.stageCount(); ++s)
        bank.design(cascade, static_cast<std::size_t>(s), filter.stage(s).section());
}

void designCascade(Bank& bank, std::size_t cascade, const SecondOrderSection* filter) {
    if (filter == nullptr) return;
    for (std::size_t s = 0; s < SessionCascades::kCascades[cascade].sections; ++s)
        bank.design(cascade, s, *filter);
}

}  // namespace

void TrackFilters::create(int rate, const Wanted& wanted) {
    bank_ = std::make_unique<Bank>();
    designBands(static_cast<float>(rate));
    designCascade(*bank_, SessionCascades::kPulses, wanted.pulses);
    designCascade(*bank_, SessionCascades::kBassLine, wanted.bassLine);
    designCascade(*bank_, SessionCascades::kBass, wanted.bass);
    const bool wantsOthers = wanted.pulses != nullptr || wanted.bassLine != nullptr;
    wantsBands_ = wanted.bands;
    wantsMeans_ = wantsOthers || wanted.bass != nullptr;
    bassAlone_.reset();
    if (wanted.bass != nullptr && !wantsOthers && !wantsBands_) bassAlone_ = *wanted.bass;
}

void TrackFilters::designBands(float rate) {
    constexpr std::array kBands = {SessionCascades::kLow, SessionCascades::kDrum,
                                   SessionCascades::kMid, SessionCascades::kHigh};
    std::array<IirPassFilter, kBands.size()> filters;
    peakss::designBands(filters, rate);
    for (std::size_t band = 0; band < kBands.size(); ++band) {
        designCascade(*bank_, kBands[band], filters[band]);
        bands_[band] = bank_->magnitudes(kBands[band]);
    }
    IirPassFilter viewLow;
    viewLow.createBandPathFilterQ(LVMakeBase::kLowBandHz, rate, LVMakeBase::kLowBandQ);
    designCascade(*bank_, SessionCascades::kViewLow, viewLow);
}

void TrackFilters::operate(const float* mono, const std::int16_t* stereo, int n,
                           KeyRankMaker* key) {
    assert(n <= SessionCascades::kMostSamples);
    if (wantsBands_) widenBlock(mono, bank_->signal(SessionCascades::kMono), n);
    if (wantsMeans_)
        meansOfBlock(stereo, bank_->signal(SessionCascades::kMean),
                     bank_->signal(SessionCascades::kWholeMean), n);
    if (bassAlone_)
        return bassAlone_->operate(bank_->signal(SessionCascades::kWholeMean), bassBlock_.data(),
                                   n);
    // Both at once need the registers of AVX-512: with fewer, one after the other takes no longer.
    if (key == nullptr || vectorForm() != VectorForm::avx512) return bank_->operate(n);
    KeyBandRunner runner(*key, n);
    bank_->operate(n, runner);
}

}  // namespace beatatlas
