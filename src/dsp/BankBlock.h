// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

#include "dsp/CascadeLayout.h"
#include "dsp/lanes/SectionLanes.h"

namespace beatatlas {

/** What the steps of a bank work on: its sections, and the signals and outputs of the block in
 *  hand. Sample t of a block is taken at step t; a lane with a delay of d gives its output for that
 *  sample at step t + d.
 *
 *  A plan has kCascades, an array of Cascade; kSignals, how many signals they hear; and
 *  kMostSamples of a block. */
template <class Plan>
struct BankBlock {
    static constexpr CascadeLayout kLayout = CascadeLayout::of(Plan::kCascades);
    static constexpr std::size_t kCascades = Plan::kCascades.size();
    static constexpr std::size_t kRows = kLayout.rowsBefore(CascadeLayout::kGroups);

    template <typename T>
    using Steps = std::array<T, static_cast<std::size_t>(Plan::kMostSamples + kLayout.depth)>;

    SectionRows<CascadeLayout::kLanes> sections{};
    /** The samples of each signal; no result depends on what stands behind the end of the block. */
    std::array<Steps<double>, Plan::kSignals> signals{};
    /** By cascade, for those that do not end in a row. */
    std::array<Steps<double>, kCascades> values{};
    /** By row of magnitudes; still with their signs. */
    std::array<Steps<std::array<float, CascadeLayout::kGroup>>, kRows> rows{};
};

}  // namespace beatatlas
