// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dsp/BankBlock.h"
#include "dsp/SecondOrderSection.h"
#include "dsp/isConstant.h"
#include "dsp/lanes/BankSteps.h"
#include "dsp/sampleBlocks.h"

namespace beatatlas {

/** Cascades of second-order sections over one or several signals, run side by side; each gives the
 *  bits of its sections one after the other. The plan says which cascades; see BankBlock.
 *
 *  A section's output waits for its output before, so a cascade computed section by section spends
 *  its time waiting; sections of different cascades do not wait for each other. CascadeLayout says
 *  how they are laid into vector lanes. Lanes cost the same whether they are used or not.
 *
 *  Life: design() for each section of the cascades that are used → signal() filled and operate()
 *  for consecutive blocks, then the outputs of that block. Memory: all within the object, some 130
 *  bytes per sample of a block. */
template <class Plan>
class FilterBank {
public:
    using Block = BankBlock<Plan>;

    /** Gives a section its coefficients and a silent past. b2 must be b0 or −b0, as in every
     *  design, or both NaN, as where the sample rate allows no design. */
    void design(std::size_t cascade, std::size_t section, const SecondOrderSection& from);

    /** Room for the next block of a signal, Plan::kMostSamples. */
    double* signal(std::size_t index) { return block_.signals[index].data(); }

    /** Filters n samples of every signal, at most Plan::kMostSamples; n ≤ 0 does nothing. */
    void operate(int n) { operate(n, runAlone); }

    /** As above, with the steps done by run(Block&, int n), which may do other work beside them:
     *  BankSteps. */
    template <class Run>
    void operate(int n, Run&& run);

    /** Of a cascade that gives values: n, until the next operate(). */
    const double* values(std::size_t cascade) const {
        return block_.values[cascade].data() + delayOf(cascade);
    }

    /** Of a cascade that gives magnitudes: n, until the next operate(). */
    float* magnitudes(std::size_t cascade) { return magnitudes_[cascade].data(); }

private:
    template <std::size_t kWidth>
    struct Alone {
        BEATATLAS_LANES static void run(Block* block, int n) {
            BankSteps<Plan, kWidth>::run(*block, n, 0,
                                         [](int /*step*/) __attribute__((always_inline)){});
        }
    };

    static void runAlone(Block& block, int n) { runInLanes<Alone>(&block, n); }

    static std::size_t delayOf(std::size_t cascade) {
        return static_cast<std::size_t>(Block::kLayout.delays[Block::kLayout.lastLanes[cascade]]);
    }

    bool hasConstantSignals(int n) const;
    bool restsAfterOneStep();
    void makeMagnitudes(int n);
    void repeatFirst(int n);

    Block block_;
    std::array<std::array<float, static_cast<std::size_t>(Plan::kMostSamples)>, Block::kCascades>
        magnitudes_{};
};

template <class Plan>
void FilterBank<Plan>::design(std::size_t cascade, std::size_t section,
                              const SecondOrderSection& from) {
    assert(section < Plan::kCascades[cascade].sections);
    assert(std::fabs(from.b2) == std::fabs(from.b0) || std::isnan(from.b0));
    const std::size_t lane = Block::kLayout.lanes[cascade][section];
    auto& to = block_.sections;
    to.b0[lane] = from.b0;
    to.b1[lane] = from.b1;
    to.flipB2[lane] = std::bit_cast<std::int64_t>(from.b2) ^ std::bit_cast<std::int64_t>(from.b0);
    to.a1[lane] = from.a1;
    to.a2[lane] = from.a2;
    to.b1x1[lane] = from.b1 * 0.0;
    to.b2x1[lane] = to.b2x2[lane] = from.b2 * 0.0;
    to.y1[lane] = to.y2[lane] = 0.0;
}

// In silence the sections die away to numbers so small that a processor takes a hundred times as
// long for each, and there they stay for ever: rounded toward zero, what feeds back equals what is
// there. A sample that leaves every section as it was shows that all samples like it will, with the
// same outputs.
template <class Plan>
template <class Run>
void FilterBank<Plan>::operate(int n, Run&& run) {
    assert(n <= Plan::kMostSamples);
    if (n <= 0) return;
    if (hasConstantSignals(n) && restsAfterOneStep()) {
        makeMagnitudes(1);
        repeatFirst(n);
    } else {
        run(block_, n);
        makeMagnitudes(n);
    }
}

template <class Plan>
bool FilterBank<Plan>::hasConstantSignals(int n) const {
    return std::all_of(block_.signals.begin(), block_.signals.end(),
                       [n](const auto& signal) { return isConstant(signal.data(), n); });
}

/** Takes one sample; unless that leaves every section as it was, takes it back. */
template <class Plan>
bool FilterBank<Plan>::restsAfterOneStep() {
    const auto before = block_.sections;
    runAlone(block_, 1);
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison, cert-exp42-c, cert-flp37-c): to the bit
    if (std::memcmp(&before, &block_.sections, sizeof before) == 0) return true;
    block_.sections = before;
    return false;
}

template <class Plan>
void FilterBank<Plan>::makeMagnitudes(int n) {
    constexpr const CascadeLayout& kLayout = Block::kLayout;
    for (std::size_t c = 0; c < Block::kCascades; ++c) {
        const std::size_t group = kLayout.lastLanes[c] / CascadeLayout::kGroup;
        if (Plan::kCascades[c].output == Cascade::Output::magnitudes &&
            !kLayout.isRowOfMagnitudes[group])
            magnitudesOfBlock(values(c), magnitudes(c), n);
    }
    for (std::size_t group = 0; group < CascadeLayout::kGroups; ++group) {
        if (!kLayout.isRowOfMagnitudes[group]) continue;
        const std::size_t firstLane = group * CascadeLayout::kGroup;
        std::array<float*, CascadeLayout::kGroup> to;
        for (std::size_t i = 0; i < to.size(); ++i)
            to[i] = magnitudes(kLayout.cascadeEndingIn(firstLane + i, Block::kCascades));
        const auto& rows = block_.rows[kLayout.rowsBefore(group)];
        magnitudesOfRows(rows.data() + kLayout.delays[firstLane], to, n);
    }
}

template <class Plan>
void FilterBank<Plan>::repeatFirst(int n) {
    for (std::size_t c = 0; c < Block::kCascades; ++c) {
        double* const values = block_.values[c].data() + delayOf(c);
        std::fill_n(values, n, *values);
        std::fill_n(magnitudes(c), n, *magnitudes(c));
    }
}

}  // namespace beatatlas
