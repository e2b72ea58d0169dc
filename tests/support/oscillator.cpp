// SPDX-License-Identifier: MIT
#include "support/oscillator.h"

#include <array>

namespace beatatlas::test {

namespace {

constexpr double kHalfPi = 1.5707963267948966;
constexpr double kQuarterTurnUnit = 2.168404344971009e-19;  // 2^-62
constexpr double kNoiseUnit = 1.1102230246251565e-16;       // 2^-53

// 1/21!, 1/19! … 1/3! with the signs of the sine's power series; the next term is below 2e-18 at a
// quarter turn.
constexpr std::array<double, 10> kSineSeries = {
    1.0 / 51090942171709440000.0,
    -1.0 / 121645100408832000.0,
    1.0 / 355687428096000.0,
    -1.0 / 1307674368000.0,
    1.0 / 6227020800.0,
    -1.0 / 39916800.0,
    1.0 / 362880.0,
    -1.0 / 5040.0,
    1.0 / 120.0,
    -1.0 / 6.0,
};

/** Sine on 0 … π/2. */
double sineOfFirstQuarter(double angle) {
    const double squared = angle * angle;
    double sum = 0.0;
    for (const double coefficient : kSineSeries) sum = (sum * squared) + coefficient;
    return angle + ((angle * squared) * sum);
}

/** Scrambles a counter into 64 evenly spread bits (the finaliser of SplitMix64: Steele, Lea, Flood,
 *  OOPSLA 2014). */
std::uint64_t scramble(std::uint64_t x) {
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31);
}

}  // namespace

Phase phaseIncrement(double hz, int sampleRate) {
    return static_cast<Phase>((hz / sampleRate) * 18446744073709551616.0);
}

Phase phaseOfTurns(double turns) {
    return static_cast<Phase>(turns * 4294967296.0) << 32;
}

double sineOf(Phase phase) {
    constexpr Phase kQuarter = Phase{1} << 62;
    const bool isNegative = (phase >> 63) != 0;
    const bool isFalling = ((phase >> 62) & 1) != 0;
    const Phase inQuarter = phase & (kQuarter - 1);
    const Phase fromZero = isFalling ? kQuarter - inQuarter : inQuarter;
    const double value =
        sineOfFirstQuarter((static_cast<double>(fromZero) * kQuarterTurnUnit) * kHalfPi);
    return isNegative ? -value : value;
}

double noiseAt(std::uint64_t seed, std::int64_t index) {
    const std::uint64_t bits =
        scramble(scramble(seed) + (static_cast<std::uint64_t>(index) * 0x9E3779B97F4A7C15U));
    const auto centred = static_cast<std::int64_t>(bits >> 10) - (std::int64_t{1} << 53);
    return static_cast<double>(centred) * kNoiseUnit;
}

}  // namespace beatatlas::test
