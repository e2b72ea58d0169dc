// SPDX-License-Identifier: MIT
#include "peakss/sensing/designBands.h"

namespace peakss {

namespace {

constexpr float kLowCornerHz = 283.0F;
constexpr float kHighCornerHz = 6000.0F;
constexpr float kButterworthQ = 0.70710677F;
constexpr float kDrumHz = 150.0F;
constexpr float kDrumOctaves = 1.5F;

}  // namespace

void designBands(std::array<beatatlas::IirPassFilter, 4>& filters, float rate) {
    filters[0].createLowPathFilter(kLowCornerHz, rate, kButterworthQ);
    filters[1].createBandPathFilterW(kDrumHz, rate, kDrumOctaves);
    filters[2].createMidPathFilterB(kLowCornerHz, kHighCornerHz, rate, kButterworthQ);
    filters[3].createHiPathFilter(kHighCornerHz, rate, kButterworthQ);
}

}  // namespace peakss
