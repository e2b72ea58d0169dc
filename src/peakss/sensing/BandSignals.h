// SPDX-License-Identifier: MIT
#pragma once

namespace peakss {

/** The rectified bands of a stretch of the mono signal, as a beat sensor listens to them. */
struct BandSignals {
    float* const*
        bands;  ///< one array for each band that is filtered, in the order of the sensor's bands
    float* viewLow;  ///< the low band of a loudness view; null: the view makes it
};

}  // namespace peakss
