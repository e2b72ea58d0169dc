// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace beatatlas {

using DoubleLanes = double __attribute__((vector_size(32)));

/** One second-order section in each lane; as IirFilter, but for the lanes. */
struct SectionLanes {
    DoubleLanes b0, b1, b2, a1, a2;
    DoubleLanes x1, x2, y1, y2;
};

/** The twelve sections of a FilterBank, three vectors of four.
 *
 *  Successive sections of a cascade work one sample apart: while the first takes sample t, the second takes sample
 *  t − 1, which the first gave in the step before. In the same lane of the next vector that needs no exchange between
 *  lanes. S0 … S3 are the cascades of two sections, L is that of four, a to d are their sections:
 *
 *      first    S0a  S1a  S2a  La       sample t
 *      second   S0b  S1b  S2b  Lb       sample t − 1
 *      third    S3a  Lc   S3b  Ld       samples t, t − 2, t − 1 and t − 3
 *
 *  At the borders of a block lanes whose sample lies outside it rest, so that every section has taken exactly the
 *  samples of the block when the call returns. */
struct FilterBankLanes {
    SectionLanes first, second, third;
};

/** Where a section of a cascade lives. */
struct FilterBankPlace {
    SectionLanes FilterBankLanes::*vector;
    int lane;
};

/** The place of section 0 … 1, or 0 … 3 for the long cascade, 4. */
constexpr FilterBankPlace filterBankPlace(int cascade, int section) {
    using Lanes = FilterBankLanes;
    if (section >= 2) return {&Lanes::third, section == 2 ? 1 : 3};
    if (cascade == 3) return {&Lanes::third, 2 * section};
    return {section == 0 ? &Lanes::first : &Lanes::second, cascade == 4 ? 3 : cascade};
}

/** Where the samples of a cascade go; those that nobody reads go to one place over and over. */
struct FilterBankSink {
    float* to;
    std::ptrdiff_t mask;  ///< of the index: all bits, or none

    float* at(std::ptrdiff_t i) const { return to + (i & mask); }
};

using FilterBankSinks = std::array<FilterBankSink, 5>;

/** Filters n ≥ 1 samples in the given form; the sinks hold the rectified outputs. */
using FilterBankKernel = void (*)(FilterBankLanes& lanes, const float* in,
                                  const FilterBankSinks& sinks, int n);

/** The kernel for vectorForm(). */
FilterBankKernel filterBankKernel();

}  // namespace beatatlas
