// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "dsp/IirPassFilter.h"

namespace peakss {

struct SensorBand;

/** Gives the four filters of a sensor of four or six bands their parts of the spectrum, for a rate
 *  in Hz. */
void designFilters(std::array<beatatlas::IirPassFilter, 4>& filters, float rate);

/** Makes the last two of six bands listen to the onsets of others, at the rate their sensors know already. */
void designOnsets(SensorBand* bands, int count);

}  // namespace peakss
