// SPDX-License-Identifier: MIT
#pragma once

// One bank for each number of lanes in a register. They differ in how the sixteen lanes are dealt to registers, and
// so in which exchange between registers brings each section its input; the arithmetic is the same. step() has
// take(sections, inputs) done for every register, where `late` is what inner(), the register of Lb and Lc, gave two
// steps ago; write() puts down what the step gave.
//
// Registers hold four doubles at the most: they answer sooner than wider ones, and the feedback of the sections is
// waited for. With AVX-512 there are twice as many of them, so that all coefficients find room.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "dsp/filterBankLanes.h"
#include "dsp/filterBankSections.h"

namespace beatatlas {

/** The sample that a step brings in, one for each of the three signals. */
struct FilterBankSample {
    double mono;
    double mean;
    double whole;
};

template <std::size_t kWidth>
struct FilterBankRegisters;

/** B Q Pa La; S0a … S3a; Ld Pb Lc Lb; S0b … S3b. */
template <>
struct FilterBankRegisters<4> {
    template <class Take>
    BEATATLAS_LANES void step(const FilterBankSample& in, const Doubles<4>& late, Take take) {
        const Doubles<4> mono = {in.mono, in.mono, in.mono, in.mono};
        const Doubles<4> mean = {in.mean, in.mean, in.mean, in.mean};
        const Doubles<4> whole = {in.whole, in.whole, in.whole, in.whole};
        const Doubles<4> monoAndMean = __builtin_shufflevector(mono, mean, 0, 5, 6, 3);
        const Doubles<4> x = __builtin_shufflevector(monoAndMean, whole, 4, 1, 2, 3);
        const Doubles<4> given = __builtin_shufflevector(first.y1, late, 6, 2, 7, 3);
        take(fourth, second.y1);
        take(third, given);
        take(first, x);
        take(second, mono);
    }

    BEATATLAS_LANES void write(FilterBankTile& tile, std::size_t k) const {
        tile.b[k] = first.y1[0];
        tile.q[k] = first.y1[1];
        tile.l[k] = third.y1[0];
        tile.p[k] = third.y1[1];
        storeLanes(__builtin_convertvector(fourth.y1, Narrow), tile.s[k].data());
    }

    template <class Each>
    BEATATLAS_LANES void forAll(Each each) {
        each(first, 0);
        each(second, 4);
        each(third, 8);
        each(fourth, 12);
    }

    BEATATLAS_LANES Sections<4>& inner() { return third; }

    using Narrow = Lanes<float, 4>;
    Sections<4> first, second, third, fourth;
};

/** Pairs in the order of the lanes. */
template <>
struct FilterBankRegisters<2> {
    template <class Take>
    BEATATLAS_LANES void step(const FilterBankSample& in, const Doubles<2>& late, Take take) {
        const Doubles<2> wholeAndMean = {in.whole, in.mean};
        const Doubles<2> meanAndMono = {in.mean, in.mono};
        const Doubles<2> mono = {in.mono, in.mono};
        const Doubles<2> givenToLdPb = __builtin_shufflevector(late, pairs[1].y1, 0, 2);
        const Doubles<2> givenToLcLb = __builtin_shufflevector(late, pairs[1].y1, 1, 3);
        take(pairs[6], pairs[2].y1);
        take(pairs[7], pairs[3].y1);
        take(pairs[4], givenToLdPb);
        take(pairs[5], givenToLcLb);
        take(pairs[0], wholeAndMean);
        take(pairs[1], meanAndMono);
        take(pairs[2], mono);
        take(pairs[3], mono);
    }

    BEATATLAS_LANES void write(FilterBankTile& tile, std::size_t k) const {
        tile.b[k] = pairs[0].y1[0];
        tile.q[k] = pairs[0].y1[1];
        tile.l[k] = pairs[4].y1[0];
        tile.p[k] = pairs[4].y1[1];
        storeLanes(__builtin_convertvector(pairs[6].y1, Pair), tile.s[k].data());
        storeLanes(__builtin_convertvector(pairs[7].y1, Pair), tile.s[k].data() + 2);
    }

    template <class Each>
    BEATATLAS_LANES void forAll(Each each) {
        for (std::size_t i = 0; i < 8; ++i) each(pairs[i], 2 * i);
    }

    BEATATLAS_LANES Sections<2>& inner() { return pairs[5]; }

    using Pair = Lanes<float, 2>;
    Sections<2> pairs[8];
};

/** The steps of a bank, for kernels; runInLanes() tells what kWidth is. */
template <std::size_t kWidth>
struct FilterBankSteps {
    static constexpr std::size_t kLanes = std::min<std::size_t>(kWidth, 4);
    using Bank = FilterBankRegisters<kLanes>;

    /** FilterBankRunner::run(), and beside(i) for i = 0 … count − 1: while a section waits for its own last output, the
     *  processor can work on something that does not wait for the bank. */
    template <class Beside>
    BEATATLAS_LANES static void run(FilterBankLanes& lanes, FilterBankTile& tile,
                                    const FilterBankStretch& stretch, int count, Beside beside) {
        Bank bank;
        bank.forAll([&lanes](auto& sections, std::size_t first)
                        __attribute__((always_inline)) { sections.load(lanes, first); });
        // In a block shorter than the lanes are deep all steps are border.
        const int front = stretch.n > kFilterBankDepth ? kFilterBankDepth : stretch.steps;
        const int atFront = std::clamp(front - stretch.first, 0, stretch.steps);
        const int inside = std::clamp(stretch.n - stretch.first, atFront, stretch.steps);
        int k = stepsAtBorder(bank, tile, stretch, 0, atFront);
        int done = 0;
        for (; k + 2 <= inside && done + 2 <= count; k += 2, done += 2) {
            beside(done);
            stepInside(bank, tile, k);
            beside(done + 1);
            stepInside(bank, tile, k + 1);
        }
        for (; k + 4 <= inside; k += 4) {
            stepInside(bank, tile, k);
            stepInside(bank, tile, k + 1);
            stepInside(bank, tile, k + 2);
            stepInside(bank, tile, k + 3);
        }
        stepsAtBorder(bank, tile, stretch, k, stretch.steps);
        for (; done < count; ++done) beside(done);
        bank.forAll([&lanes](auto& sections, std::size_t first)
                        __attribute__((always_inline)) { sections.store(lanes, first); });
    }

private:
    BEATATLAS_LANES static FilterBankSample sampleOf(const FilterBankTile& tile, std::size_t k) {
        return {tile.mono[k], tile.mean[k], tile.whole[k]};
    }

    BEATATLAS_LANES static void stepInside(Bank& bank, FilterBankTile& tile, int step) {
        const auto k = static_cast<std::size_t>(step);
        const Doubles<kLanes> late = bank.inner().y2;
        bank.step(
            sampleOf(tile, k), late,
            [](auto& sections, const auto& x) __attribute__((always_inline)) { sections.take(x); });
        bank.write(tile, k);
    }

    /** Steps from..to-1 of the tile, in any of which some lanes may rest; a resting lane goes on giving what it has.
     *  Returns `to`. */
    BEATATLAS_LANES static int stepsAtBorder(Bank& bank, FilterBankTile& tile,
                                             const FilterBankStretch& stretch, int from, int to) {
        Doubles<kLanes> late = bank.inner().y2;
        for (int step = from; step < to; ++step) {
            const Doubles<kLanes> later = bank.inner().y1;
            const auto k = static_cast<std::size_t>(step);
            const std::int64_t t = stretch.first + step;
            const std::int64_t n = stretch.n;
            bank.step(
                sampleOf(tile, k), late,
                [ t, n ](auto& sections, const auto& x)
                    __attribute__((always_inline)) { sections.takeAtBorder(x, t, n); });
            bank.write(tile, k);
            late = later;
        }
        return to;
    }
};

}  // namespace beatatlas
