// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Long tracks tell their key by how often notes sound, short ones by fewer chords: they are weighed apart. The
 *  values are the places in the weight tables. */
enum class LengthClass { isLong = 0, isShort = 1 };

constexpr float kLongTrackSeconds = 30.0F;

/** The class of n samples, compared in single precision. */
inline LengthClass lengthClassOf(long n, float rate) {
    return static_cast<float>(n) >= kLongTrackSeconds * rate ? LengthClass::isLong
                                                             : LengthClass::isShort;
}

}  // namespace beatatlas
