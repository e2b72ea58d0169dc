// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "dsp/IirPassFilter.h"
#include "peakss/PeakBuffer.h"
#include "peakss/PeakSensor.h"

namespace peakss {

/** What the beat sensor has for one frequency band. */
struct SensorBand {
    beatatlas::IirPassFilter filter;
    PeakSensor sensor;
    PeakBuffer buffer;
    std::unique_ptr<float[]> samples;  ///< the chunk in hand, filtered and rectified
    float acc = 0.0F;                  ///< sum of the samples in the current step
    std::unique_ptr<float[]> levels;   ///< of the steps that the chunk in hand closes
    int nextPeak = 0;                  ///< the first of these not taken yet, which confirms a peak
};

}  // namespace peakss
