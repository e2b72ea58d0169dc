// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "FuzzInput.h"

namespace beatatlas::fuzz {

/** Exactly `count` samples of a kind that the input chooses: silence, pulses, noise, a square wave,
 *  a constant, values that no decoder should yield, or the input's own bit patterns, repeated. The
 *  vector has no spare capacity, so that the address sanitizer sees every step past its end. */
std::vector<float> fuzzSamples(FuzzInput& input, int count);

/** A number that may be passed to an interface: a usual one, an end of the type's range, zero, or
 *  any. */
int fuzzInt(FuzzInput& input);
float fuzzFloat(FuzzInput& input);

}  // namespace beatatlas::fuzz
