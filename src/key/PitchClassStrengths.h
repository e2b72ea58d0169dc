// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "key/LengthClass.h"
#include "key/pitchClasses.h"

namespace beatatlas {

/** One strength per pitch class, counted in semitones from the reference pitch. */
using PitchClassStrengths = std::array<float, kPitchClasses>;

/** A mono buffer and how it is to be looked at. */
struct KeyBuffer {
    const float* samples;
    long count;
    float rate;  // Hz
    float referenceHz;
    int hopDivisor;
    int mode;  // 0 to 4, anything else counts as 0

    LengthClass lengthClass() const { return lengthClassOf(count, rate); }
};

/** Samples between frames; below 1 when hopDivisor leaves none. */
int hopOf(const KeyBuffer& buffer);

/** How much of each pitch class the buffer holds; all 0 for silence and where there is no whole
 *  frame. Throws std::bad_alloc, nothing else. */
PitchClassStrengths pitchClassStrengths(const KeyBuffer& buffer);

}  // namespace beatatlas
