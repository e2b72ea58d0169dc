// SPDX-License-Identifier: MIT
#pragma once

#include "dsp/FilterBank.h"
#include "dsp/IirPassFilter.h"

namespace peakss {

/** The rectified bands of a block of the mono signal, as a beat sensor listens to them. */
struct BandSignals {
    /** One array for each band that is filtered, in the order of the sensor's bands. */
    float* const* bands;
    /** The low band of a loudness view; null: the view makes it. */
    float* viewLow;
};

/** Gives the filters of a sensor of `bands` bands their parts of the spectrum, for a rate in Hz.
 *  There are designs for 3, 4 and 6 bands, the last with four filters; those of any other number
 *  are left as they are and pass the signal through. */
void designFilters(beatatlas::IirPassFilter* filters, int bands, float rate);

/** The four filters of four and six bands, and the low band of a loudness view, which costs nothing
 *  beside them. */
void designSensorBank(beatatlas::FilterBank& bank, float rate);

/** Where a bank so designed leaves the bands. */
beatatlas::FilterBank::Outputs sensorBankOutputs(const BandSignals& signals);

}  // namespace peakss
