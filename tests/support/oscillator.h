// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas::test {

/** A phase: the fraction of a turn in units of 2^-64, so that it wraps by itself and n × increment is exact at
 *  any sample n, however far into the track. */
using Phase = std::uint64_t;

/** The phase one sample adds at `hz`, for 0 ≤ hz < sampleRate / 2. */
Phase phaseIncrement(double hz, int sampleRate);

/** The phase of a whole number and fraction of turns ≥ 0, below 2^31; resolution 2^-32 of a turn. */
Phase phaseOfTurns(double turns);

/** Sine of a phase within 1e-15, made of additions and multiplications only: the maths library's sine differs in
 *  its last bits from machine to machine. Rounds as the thread does; callers hold a NearestScope. */
double sineOf(Phase phase);

/** White noise in [-1, 1), a pure function of seed and index: any stretch can be made without what came before. */
double noiseAt(std::uint64_t seed, std::int64_t index);

}  // namespace beatatlas::test
