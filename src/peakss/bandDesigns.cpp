// SPDX-License-Identifier: MIT
#include "peakss/bandDesigns.h"

#include "peakss/SensorBand.h"

namespace peakss {

namespace {

constexpr float kLowCornerHz = 283.0F;
constexpr float kHighCornerHz = 6000.0F;
constexpr float kButterworthQ = 0.70710677F;
constexpr float kDrumHz = 150.0F;
constexpr float kDrumOctaves = 1.5F;
constexpr float kLowOnsetMs = 1.0F;
constexpr float kHighOnsetMs = 0.2F;

void designLow(SensorBand& band, float rate) {
    band.filter.createLowPathFilter(kLowCornerHz, rate, kButterworthQ);
}

void designDrum(SensorBand& band, float rate) {
    band.filter.createBandPathFilterW(kDrumHz, rate, kDrumOctaves);
}

void designMid(SensorBand& band, float rate) {
    band.filter.createMidPathFilterB(kLowCornerHz, kHighCornerHz, rate, kButterworthQ);
}

void designHigh(SensorBand& band, float rate) {
    band.filter.createHiPathFilter(kHighCornerHz, rate, kButterworthQ);
}

void designOnset(SensorBand& band, float meanMs, int source) {
    band.filter.createThroughFilter();
    band.sensor.setDiffAnalyze(meanMs, source);
}

}  // namespace

void designBands(SensorBand* bands, int count, float rate) {
    if (count == 3) {
        designDrum(bands[0], rate);
        designMid(bands[1], rate);
        designHigh(bands[2], rate);
    }
    if (count == 4 || count == 6) {
        designLow(bands[0], rate);
        designDrum(bands[1], rate);
        designMid(bands[2], rate);
        designHigh(bands[3], rate);
    }
    if (count == 6) {
        designOnset(bands[4], kLowOnsetMs, 0);
        designOnset(bands[5], kHighOnsetMs, 3);
    }
}

}  // namespace peakss
