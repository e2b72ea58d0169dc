// SPDX-License-Identifier: MIT
#pragma once

#include "dsp/isLongTrack.h"

namespace beatatlas {

/** The key of a long track shows in how often notes sound, that of a short one in fewer chords:
 *  they are weighed apart. The values are the indices into the weight tables. */
enum class LengthClass { isLong = 0, isShort = 1 };

/** The class of n samples. */
inline LengthClass lengthClassOf(long n, float rate) {
    return isLongTrack(n, rate) ? LengthClass::isLong : LengthClass::isShort;
}

}  // namespace beatatlas
