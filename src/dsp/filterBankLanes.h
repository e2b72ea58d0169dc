// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "dsp/vectorLanes.h"

namespace beatatlas {

/** The sixteen sections of a FilterBank, one in each lane; as IirFilter, but for the lanes.
 *
 *  Successive sections of a cascade work some samples apart: the first takes sample t, the others what the section
 *  before them gave one or two steps ago. S0 … S3 and L are the cascades over the mono signal, P, Q and B those over
 *  the 16-bit signal; a to d are their sections:
 *
 *      lanes 0 to 7     B    Pa   Q    La   S0a  S1a  S2a  S3a    sample t
 *      lanes 8 to 15    Ld   Pb   Lc   Lb   S0b  S1b  S2b  S3b    sample t − 1; Lc t − 3, Ld t − 5
 *
 *  Lc and Ld take an output of their own half of the lanes. A register of eight lanes is ready only when the slowest
 *  of them is, so they take the output before the last: the one way through all five coefficients then spreads over
 *  two steps, which the feedback of every section takes anyway. */
struct FilterBankLanes {
    static constexpr std::size_t kLanes = 16;
    using Row = std::array<double, kLanes>;

    Row b0, b1, b2, a1, a2;
    Row x1, x2, y1, y2;

    /** All bits in those of the first eight lanes that hear the mean of the channels, or its whole part. */
    std::array<std::int64_t, 8> hearMean = {0, -1, -1, 0, 0, 0, 0, 0};
    std::array<std::int64_t, 8> hearWhole = {-1, 0, 0, 0, 0, 0, 0, 0};
};

/** Lanes of sections 0, 1, … of a cascade: S0 to S3, L, then P, Q and B. */
inline constexpr std::array<std::array<std::size_t, 4>, 8> kFilterBankPlaces = {
    {{4, 12}, {5, 13}, {6, 14}, {7, 15}, {3, 11, 10, 8}, {1, 9}, {2}, {0}}};

/** By how many samples each lane stays behind the step; the last step of a block of n is n − 1 + kFilterBankDepth. */
inline constexpr std::array<std::int64_t, FilterBankLanes::kLanes> kFilterBankDelays = {
    0, 0, 0, 0, 0, 0, 0, 0, 5, 1, 3, 1, 1, 1, 1, 1};
inline constexpr int kFilterBankDepth = 5;

/** A stretch of a block on its way through the lanes, small enough to stay in the first cache: kSteps steps, and those behind
 *  the block's end with its last ones. */
struct FilterBankTile {
    static constexpr int kSteps = 128;
    template <typename T>
    using Steps = std::array<T, static_cast<std::size_t>(kSteps + kFilterBankDepth)>;

    Steps<double> mono;   ///< the sample of each step; 0 behind the end of the block
    Steps<double> mean;   ///< of both channels, in 16 bits
    Steps<double> whole;  ///< whole part of it

    Steps<std::array<float, 8>> s;  ///< S0 to S3 after each step, in the upper half of each row
    Steps<double> l;
    Steps<double> p;
    Steps<double> q;
    Steps<double> b;
};

/** Which steps of a block of n samples a tile holds. */
struct FilterBankStretch {
    int first;
    int steps;
    int n;
};

/** Does the steps of one tile; those behind the end of the block belong into one tile with its last sample. At the
 *  borders of the block lanes whose sample lies outside it rest, so that every section has taken exactly the samples
 *  of the block after the last step. */
void runFilterBank(FilterBankLanes& lanes, FilterBankTile& tile, const FilterBankStretch& stretch);

}  // namespace beatatlas
