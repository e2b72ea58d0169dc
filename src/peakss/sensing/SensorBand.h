// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "peakss/sensing/PeakBuffer.h"
#include "peakss/sensing/PeakSensor.h"

namespace peakss {

/** What the beat sensor has for one frequency band. */
struct SensorBand {
    PeakSensor sensor;
    PeakBuffer buffer;
    std::unique_ptr<float[]>
        onsets;  ///< room for the chunk in hand, of a band that listens to the onsets of another
    const float* signal = nullptr;    ///< the chunk in hand, filtered and rectified, or its onsets
    float acc = 0.0F;                 ///< sum of the samples in the current step
    std::unique_ptr<float[]> levels;  ///< of the steps that the chunk in hand closes
    int nextPeak = 0;                 ///< the first of these not taken yet, which confirms a peak
};

}  // namespace peakss
