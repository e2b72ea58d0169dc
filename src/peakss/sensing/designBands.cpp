// SPDX-License-Identifier: MIT
#include "peakss/sensing/designBands.h"

#include <array>

#include "view/LVMakeBase.h"

namespace peakss {

using beatatlas::FilterBank;
using beatatlas::IirPassFilter;

namespace {

constexpr float kLowCornerHz = 283.0F;
constexpr float kHighCornerHz = 6000.0F;
constexpr float kButterworthQ = 0.70710677F;
constexpr float kDrumHz = 150.0F;
constexpr float kDrumOctaves = 1.5F;

void designLow(IirPassFilter& filter, float rate) {
    filter.createLowPathFilter(kLowCornerHz, rate, kButterworthQ);
}

void designDrum(IirPassFilter& filter, float rate) {
    filter.createBandPathFilterW(kDrumHz, rate, kDrumOctaves);
}

void designMid(IirPassFilter& filter, float rate) {
    filter.createMidPathFilterB(kLowCornerHz, kHighCornerHz, rate, kButterworthQ);
}

void designHigh(IirPassFilter& filter, float rate) {
    filter.createHiPathFilter(kHighCornerHz, rate, kButterworthQ);
}

}  // namespace

void designFilters(IirPassFilter* filters, int bands, float rate) {
    if (bands == 3) {
        designDrum(filters[0], rate);
        designMid(filters[1], rate);
        designHigh(filters[2], rate);
    }
    if (bands == 4 || bands == 6) {
        designLow(filters[0], rate);
        designDrum(filters[1], rate);
        designMid(filters[2], rate);
        designHigh(filters[3], rate);
    }
}

// In the order of FilterBank's cascades: the mid band is the long one, band 3 the high one.
void designSensorBank(FilterBank& bank, float rate) {
    std::array<IirPassFilter, 4> filters;
    designFilters(filters.data(), 4, rate);
    bank.design(0, filters[0]);
    bank.design(1, filters[1]);
    bank.design(2, filters[3]);
    IirPassFilter viewLow;
    viewLow.createBandPathFilterQ(beatatlas::LVMakeBase::kLowBandHz, rate,
                                  beatatlas::LVMakeBase::kLowBandQ);
    bank.design(3, viewLow);
    bank.design(FilterBank::kLongCascade, filters[2]);
}

FilterBank::Outputs sensorBankOutputs(const BandSignals& signals) {
    return {signals.bands[0], signals.bands[1], signals.bands[3], signals.viewLow,
            signals.bands[2]};
}

}  // namespace peakss
