// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** 2π, a little short in its last digits: the factor of the band and envelope filter designs, kept
 *  so that their coefficients come out the same to the last bit. */
inline constexpr double kShortTwoPi = 6.28318530717958;

inline constexpr double kPi = 3.14159265358979323846;

}  // namespace beatatlas
