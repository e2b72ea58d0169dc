// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "dsp/IirPassFilter.h"

namespace peakss {

/** The rectified bands of one block of the mono signal, full scale ±1.0. Every array has as many
 *  samples as the block. They stay the caller's; nobody keeps them beyond the call. */
struct BandSignals {
    /** One array for each band that is filtered, in the order of the sensor's bands: those of
     *  designBands() and none for the onsets. Never null. */
    float* const* bands;
    /** The band-pass of LVMakeBase::kLowBandHz and kLowBandQ; null when there is no loudness
     *  view. */
    float* viewLow;
};

/** Gives the four filters of a sensor of four or six bands their parts of the spectrum, for a rate
 *  in Hz. */
void designBands(std::array<beatatlas::IirPassFilter, 4>& filters, float rate);

}  // namespace peakss
