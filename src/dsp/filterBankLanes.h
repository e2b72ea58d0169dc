// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

/** The sixteen sections of a FilterBank, one in each lane; as IirFilter, but for the lanes.
 *
 *  Successive sections of a cascade work some samples apart: the first takes sample t, the others what the section
 *  before them gave one or two steps ago. S0 … S3 and L are the cascades over the mono signal, P, Q and B those over
 *  the 16-bit signal; a to d are their sections:
 *
 *      lanes 0 to 7     B    Q    Pa   La   S0a  S1a  S2a  S3a    sample t
 *      lanes 8 to 15    Ld   Pb   Lc   Lb   S0b  S1b  S2b  S3b    sample t − 1; Lc t − 3, Ld t − 5
 *
 *  Lc and Ld take an output of their own half of the lanes. A register is ready only when the slowest of its lanes
 *  is, so they take the output before the last: the one way through all five coefficients then spreads over
 *  two steps, which the feedback of every section takes anyway.
 *
 *  In every design b2 is b0 or −b0, and rounding toward zero treats both signs alike: the product of the one is that of
 *  the other, to the bit. */
struct FilterBankLanes {
    static constexpr std::size_t kLanes = 16;
    using Row = std::array<double, kLanes>;

    Row b0, b1, a1, a2;
    std::array<std::int64_t, kLanes> flipB2;  ///< the sign bit where b2 is −b0; elsewhere it is b0
    Row b1x1, b2x1, b2x2;                     ///< the last two inputs, as they enter the sums
    Row y1, y2;
};

/** Lanes of sections 0, 1, … of a cascade: S0 to S3, L, then P, Q and B. */
inline constexpr std::array<std::array<std::size_t, 4>, 8> kFilterBankPlaces = {
    {{4, 12}, {5, 13}, {6, 14}, {7, 15}, {3, 11, 10, 8}, {2, 9}, {1}, {0}}};

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

    Steps<std::array<float, 4>> s;  ///< S0 to S3 after each step
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

/** Does the steps of a bank. One that does other work beside them stands in for this one. */
class FilterBankRunner {
public:
    virtual ~FilterBankRunner() = default;

    /** Does the steps of one tile; those behind the end of the block belong into one tile with its last sample. At
     *  the borders of the block lanes whose sample lies outside it rest, so that every section has taken exactly the
     *  samples of the block after the last step. */
    virtual void run(FilterBankLanes& lanes, FilterBankTile& tile,
                     const FilterBankStretch& stretch);
};

}  // namespace beatatlas
