// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas::track::inner {

/** The position of the maximum of the parabola through three values at −1, 0 and 1; 0 if it has
 *  none. */
inline double parabolaTop(double before, double middle, double after) {
    const double curve = before - 2.0 * middle + after;
    return curve < 0.0 ? 0.5 * (before - after) / curve : 0.0;
}

}  // namespace beatatlas::track::inner
