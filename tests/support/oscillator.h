// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas::test {

/** A phase: the fraction of a cycle in units of 2^-64, so that it wraps by itself and n × increment
 *  is exact at every sample n, however far into the track. */
using Phase = std::uint64_t;

/** The phase increment per sample at `hz`, for 0 ≤ hz < sampleRate / 2. */
Phase phaseIncrement(double hz, int sampleRate);

/** The phase after a number of cycles, 0 ≤ turns < 2^31; resolution 2^-32 of a cycle. */
Phase phaseOfTurns(double turns);

/** Sine of a phase to within 1e-15, with additions and multiplications only: the mathematics
 *  library's sine differs in its last bits from machine to machine. Rounds in the thread's mode;
 *  callers hold a NearestScope. */
double sineOf(Phase phase);

/** White noise in [-1, 1), a pure function of seed and index: any part can be made without what
 *  came before. */
double noiseAt(std::uint64_t seed, std::int64_t index);

}  // namespace beatatlas::test
