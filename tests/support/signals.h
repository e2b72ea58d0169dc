// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas::test {

// Plain mono signals. `peak` is the amplitude in the caller's scale (32767 for 16-bit scale). The
// same bits on every machine and in every rounding mode: each value is computed in double, rounded
// to nearest.

std::vector<float> silence(std::size_t frames);

/** One frame of `peak` at `at`, which must lie within the signal. */
std::vector<float> impulse(std::size_t frames, std::size_t at, double peak);

/** Single frames of `peak` at `first`, first + period, …; a fractional period is kept, and each
 *  position rounded. */
std::vector<float> clickTrain(std::size_t frames, std::size_t first, double periodFrames,
                              double peak);

/** Starts at phase 0, rising. */
std::vector<float> sine(std::size_t frames, double hz, int sampleRate, double peak);

/** +peak for the first half of each cycle, -peak for the second; starts with +peak. Not
 *  band-limited. */
std::vector<float> square(std::size_t frames, double hz, int sampleRate, double peak);

/** Uniform in [-peak, peak]; the same seed gives the same noise. */
std::vector<float> whiteNoise(std::size_t frames, double peak, std::uint64_t seed);

/** A sine whose frequency moves linearly from `fromHz` to `toHz` over the whole signal. */
std::vector<float> sweep(std::size_t frames, double fromHz, double toHz, int sampleRate,
                         double peak);

/** Adds `part` to `sum` from frame `at` on; what lies beyond the end of `sum` is dropped. */
void mixInto(std::vector<float>& sum, const std::vector<float>& part, std::size_t at = 0);

}  // namespace beatatlas::test
