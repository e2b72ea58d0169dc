// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "dsp/filterBankLanes.h"

namespace beatatlas {

class IirPassFilter;

/** Five cascades of second-order sections over one signal, run side by side: four of two sections, and one of four.
 *  Each gives the rectified output of the IirPassFilter that it was designed after, bit for bit.
 *
 *  A section's output waits for its output before, so a cascade computed section by section spends its time
 *  waiting; sections of different cascades do not wait for each other. filterBankLanes.h says how they are laid
 *  into vector lanes.
 *
 *  Life: design() for each cascade that is used → operate() on consecutive blocks. Nothing is allocated. */
class FilterBank {
public:
    static constexpr int kCascades = 5;
    static constexpr int kLongCascade = 4;  ///< the one of four sections

    /** One array per cascade; a null one leaves that cascade alone: it does not hear the block. */
    using Outputs = std::array<float*, kCascades>;

    /** Gives a cascade the coefficients of a filter with as many sections, and a silent past. */
    void design(int cascade, const IirPassFilter& plain);

    /** Filters and rectifies one block of n samples; no output may be the input. n ≤ 0 does nothing. */
    void operate(const float* in, const Outputs& outputs, int n);

private:
    void filter(const float* in, const Outputs& outputs, int n);
    void forgetBlock(int cascade, const FilterBankLanes& before);

    FilterBankLanes lanes_{};
};

}  // namespace beatatlas
