// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Brings n samples of a rectified band from full scale ±1.0 to 16-bit scale; `scaled` may be the
 *  same array.
 *  @return the loudest of them, 16-bit scale and 0 at the least; NaN counts for nothing */
float scaleBand(const float* band, float* scaled, int n);

}  // namespace beatatlas
