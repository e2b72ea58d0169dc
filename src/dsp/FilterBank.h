// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "dsp/filterBankLanes.h"

namespace beatatlas {

class FilterBankRunner;
class IirPassFilter;
struct SecondOrderSection;

/** All that a session filters at the full rate, run side by side. Five cascades hear the mono signal: four of two
 *  second-order sections, and one of four; each gives the rectified output of the IirPassFilter that it was designed
 *  after, bit for bit. Three more hear the 16-bit signal and give the output of the sections they were designed after,
 *  as it is.
 *
 *  A section's output waits for its output before, so a cascade computed section by section spends its time
 *  waiting; sections of different cascades do not wait for each other. filterBankLanes.h says how they are laid
 *  into vector lanes. Lanes cost the same whether they are used or not.
 *
 *  Life: design… for each cascade that is used → operate() on consecutive blocks. Nothing is allocated. */
class FilterBank {
public:
    static constexpr int kCascades = 5;
    static constexpr int kLongCascade = 4;  ///< the one of four sections

    /** One array per cascade over the mono signal; a null one leaves that cascade alone: it does not hear the block. */
    using Outputs = std::array<float*, kCascades>;

    /** The cascades over the 16-bit signal. */
    enum Level : int {
        kTwice,  ///< two sections over the mean of both channels
        kOnce,   ///< one section over the same
        kWhole,  ///< one section over its whole part
    };
    static constexpr int kLevels = 3;

    /** As Outputs; by Level. */
    using LevelOutputs = std::array<double*, kLevels>;

    /** Gives a cascade the coefficients of a filter with as many sections, and a silent past. */
    void design(int cascade, const IirPassFilter& plain);

    /** Likewise; every section of the cascade becomes the one given. */
    void designLevel(Level level, const SecondOrderSection& plain);

    /** Filters and rectifies one block of n samples; no output may be the input. n ≤ 0 does nothing. */
    void operate(const float* in, const Outputs& outputs, int n) {
        operate(in, nullptr, outputs, {}, n);
    }

    /** As above, and filters the same n frames in 16 bits, left and right in turn. */
    void operate(const float* mono, const std::int16_t* stereo, const Outputs& outputs,
                 const LevelOutputs& levels, int n);

    /** As above, with the steps done by the runner. */
    void operate(const float* mono, const std::int16_t* stereo, const Outputs& outputs,
                 const LevelOutputs& levels, int n, FilterBankRunner& runner);

private:
    void filter(const float* mono, const std::int16_t* stereo, const Outputs& outputs,
                const LevelOutputs& levels, int n, FilterBankRunner& runner);
    void forgetBlock(std::size_t cascade, const FilterBankLanes& before);

    FilterBankLanes lanes_{};
};

}  // namespace beatatlas
