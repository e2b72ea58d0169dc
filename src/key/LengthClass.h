// SPDX-License-Identifier: MIT
#pragma once

#include "dsp/isLongTrack.h"

namespace beatatlas {

/** Long tracks tell their key by how often notes sound, short ones by fewer chords: they are weighed apart. The
 *  values are the places in the weight tables. */
enum class LengthClass { isLong = 0, isShort = 1 };

/** The class of n samples. */
inline LengthClass lengthClassOf(long n, float rate) {
    return isLongTrack(n, rate) ? LengthClass::isLong : LengthClass::isShort;
}

}  // namespace beatatlas
