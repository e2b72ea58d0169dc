// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "support/Sounds.h"

namespace test {

/** Three seconds of silence with clicks at uneven distances, alike on all channels. Each click is a
 *  Ricker wavelet about 900 Hz: without a level of its own and without anything above 3 kHz, so
 *  that no codec, not even one for telephones, moves its middle by cutting its bands. */
Sound clickPattern(int rate, int channels);

/** By how many seconds the pattern lies late in what was decoded (early: negative), to a fraction
 *  of a frame: where its cross-correlation with the pattern that was encoded is highest, up to a
 *  quarter of a second either way. Nothing when what is found there is no likeness of the
 *  pattern. */
std::optional<double> patternShift(const std::vector<float>& channel, int rate);

}  // namespace test
