// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "FuzzInput.h"

namespace beatatlas::fuzz {

/** Exactly `count` samples of a kind the input chooses: silence, pulses, noise, a square tone, a constant, values no
 *  decoder should yield, or the input's own bit patterns over and over. The vector has no spare room, so that the
 *  address sanitizer sees every step past its end. */
std::vector<float> fuzzSamples(FuzzInput& input, int count);

/** A number an interface may be handed: usual ones, the ends of the type, zero, or any. */
int fuzzInt(FuzzInput& input);
float fuzzFloat(FuzzInput& input);

}  // namespace beatatlas::fuzz
