// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "dsp/vectorLanes.h"

/** Levels in 16 bits on a logarithmic scale: 64 octaves of 1024 steps each, so a step is 0.006 dB.
 *  Code 0 stands for silence. */
namespace beatatlas::track::inner {

using LevelCode = std::uint16_t;

inline constexpr std::size_t kLevelCodes = 65536;
inline constexpr double kLevelCodesPerOctave = 1024.0;
/** The lowest code lies this many octaves below level 1. */
inline constexpr double kLowestLevelOctaves = 54.0;

/** How many energies are coded together. */
inline constexpr std::size_t kCodedTogether = 16;

/** The level codes of sixteen energies ≥ 0 (the level is the square root of the energy), computed
 *  in lanes for registers of any width.
 *
 *  The logarithm of a float is its exponent plus the logarithm of its mantissa 1 + t. The
 *  polynomial of degree 5 interpolates the latter at the Chebyshev points of 0 ≤ t ≤ 1, with an
 *  error of at most 1.5e-5 octaves, a hundredth of a code. */
BEATATLAS_LANES void codeLevels(const Lanes<float, kCodedTogether>& energies,
                                Lanes<std::int32_t, kCodedTogether>& codes) {
    using Ints = Lanes<std::int32_t, kCodedTogether>;
    using Floats = Lanes<float, kCodedTogether>;
    constexpr float kCodesPerEnergyOctave = static_cast<float>(kLevelCodesPerOctave) / 2.0F;
    constexpr std::int32_t kExponentOfOne = 127;
    constexpr auto kLowest = static_cast<std::int32_t>(2.0 * kLowestLevelOctaves);
    constexpr std::int32_t kMostCode = 65535;
    Ints bits;
    std::memcpy(&bits, &energies, sizeof bits);
    const Ints octave = (bits >> 23) - (kExponentOfOne - kLowest);
    const Ints mantissa = (bits & 0x7fffff) | 0x3f800000;
    Floats t;
    std::memcpy(&t, &mantissa, sizeof t);
    t = t - 1.0F;
    const Floats high = (((0.0439286278F * t) - 0.189832447F) * t + 0.411561482F) * t;
    const Floats log = ((high - 0.707253434F) * t + 1.44159208F) * t + 1.439093e-05F;
    const Floats scaled = (__builtin_convertvector(octave, Floats) + log) * kCodesPerEnergyOctave;
    const Ints rounded = __builtin_convertvector(scaled + 0.5F, Ints);
    const Ints above = rounded > 0 ? rounded : 0;
    codes = above < kMostCode ? above : kMostCode;
}

/** The code of one energy ≥ 0. */
inline LevelCode codeOfEnergy(float energy) {
    Lanes<float, kCodedTogether> energies;
    fillLanes(energies, energy);
    Lanes<std::int32_t, kCodedTogether> codes;
    codeLevels(energies, codes);
    return static_cast<LevelCode>(codes[0]);
}

/** The level of each code. The caller sets rounding to nearest. */
std::vector<float> levelsOfCodes();

}  // namespace beatatlas::track::inner
