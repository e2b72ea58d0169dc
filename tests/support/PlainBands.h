// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "dsp/IirPassFilter.h"
#include "peakss/sensing/designBands.h"

namespace beatatlas::test {

/** The rectified bands of a beat sensor and of a loudness view in their plain form, one cascade
 *  after the other. There are filters for sensors of 3, 4 and 6 bands; those of another number pass
 *  the signal through. */
class PlainBands {
public:
    PlainBands() = default;

    PlainBands(int rate, int bands) : filters_(static_cast<std::size_t>(bands == 6 ? 4 : bands)) {
        constexpr float kQ = 0.70710677F;
        const auto hz = static_cast<float>(rate);
        viewLow_.createBandPathFilterQ(150.0F, hz, 0.9F);
        if (bands != 3 && bands != 4 && bands != 6) return;
        auto filter = filters_.begin();
        if (bands != 3) filter++->createLowPathFilter(283.0F, hz, kQ);
        filter++->createBandPathFilterW(150.0F, hz, 1.5F);
        filter++->createMidPathFilterB(283.0F, 6000.0F, hz, kQ);
        filter->createHiPathFilter(6000.0F, hz, kQ);
    }

    /** The bands of the next n samples, until the next call. */
    peakss::BandSignals operate(const float* mono, int n) {
        samples_.resize(filters_.size() + 1);
        bands_.clear();
        for (std::size_t b = 0; b < filters_.size(); ++b)
            bands_.push_back(filter(filters_[b], mono, n, samples_[b]));
        return {bands_.data(), filter(viewLow_, mono, n, samples_.back())};
    }

private:
    static float* filter(IirPassFilter& filter, const float* mono, int n, std::vector<float>& out) {
        out.resize(static_cast<std::size_t>(std::max(n, 1)));  // no null array for n < 1
        filter.operate(mono, out.data(), n);
        for (float& x : out) x = std::fabs(x);
        return out.data();
    }

    std::vector<IirPassFilter> filters_;
    IirPassFilter viewLow_;
    std::vector<std::vector<float>> samples_;
    std::vector<float*> bands_;
};

}  // namespace beatatlas::test
