// SPDX-License-Identifier: MIT
#pragma once

#include "key/LengthClass.h"
#include "key/PitchClassStrengths.h"

namespace beatatlas {

/** The key that twelve pitch class strengths speak for: 0 to 11 major, 12 to 23 minor, counted from
 *  the reference pitch. Equal strengths rank in the order of pitch classes; any strengths, NaN
 *  included, give some key.
 *  @param mode  row of the weight tables, 0 to 4; anything else counts as 0 */
int keyOfStrengths(const PitchClassStrengths& strengths, int mode, LengthClass lengthClass);

}  // namespace beatatlas
