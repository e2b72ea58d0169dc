// SPDX-License-Identifier: MIT
#pragma once

namespace peakss {

struct SensorBand;

/** Gives each of count bands its part of the spectrum, for a rate in Hz that the sensors know already. There are
 *  designs for 3, 4 and 6 bands; the bands of any other number are left as they are and pass the signal through. */
void designBands(SensorBand* bands, int count, float rate);

}  // namespace peakss
