// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "dsp/BankBlock.h"
#include "dsp/lanes/SectionLanes.h"

namespace beatatlas {

/** The steps of a bank, for kernels; runInLanes() says what kWidth is.
 *
 *  Registers hold four doubles at the most: they answer sooner than wider ones, and the feedback of
 *  the sections is waited for. With AVX-512 there are twice as many of them, so that all
 *  coefficients find room. */
template <class Plan, std::size_t kWidth>
class BankSteps {
public:
    static constexpr std::size_t kLanes = std::min<std::size_t>(kWidth, 4);

    /** Takes the n samples of the block, and beside(i) for i = 0 … count − 1: while a section waits
     *  for its own last output, the processor can work on something that does not wait for the
     *  bank.
     *
     *  At the borders of the block lanes whose sample lies outside it rest, so that every section
     *  has taken exactly the samples of the block after the last step. */
    template <class Beside>
    BEATATLAS_LANES static void run(BankBlock<Plan>& block, int n, int count, Beside beside) {
        BankSteps bank;
        bank.load(block, kAll);
        // In a block shorter than the lanes are deep all steps are border.
        const int front = n > kLayout.depth ? kLayout.depth : n + kLayout.depth;
        const int inside = std::max(n, front);
        bank.stepsAtBorder(block, n, 0, front);
        int k = front;
        int done = 0;
        for (; k + 2 <= inside && done + 2 <= count; k += 2, done += 2) {
            beside(done);
            bank.stepInside(block, k);
            beside(done + 1);
            bank.stepInside(block, k + 1);
        }
        for (; k + 4 <= inside; k += 4) {
            bank.stepInside(block, k);
            bank.stepInside(block, k + 1);
            bank.stepInside(block, k + 2);
            bank.stepInside(block, k + 3);
        }
        bank.stepsAtBorder(block, n, k, n + kLayout.depth);
        for (; done < count; ++done) beside(done);
        bank.store(block, kAll);
    }

private:
    static constexpr CascadeLayout kLayout = BankBlock<Plan>::kLayout;
    static constexpr std::size_t kRegisters = CascadeLayout::kLanes / kLanes;
    static constexpr auto kAll = std::make_index_sequence<kRegisters>{};
    static constexpr auto kEach = std::make_index_sequence<kLanes>{};

    using Source = CascadeLayout::Source;
    using Values = Lanes<double, kLanes>;
    using Integers = Lanes<std::int64_t, kLanes>;

    /** What the lanes of a register take: from which vectors, and from which lane of it. Vectors
     *  are named by a source whose index is that of a signal or of a register. */
    struct Exchange {
        std::array<Source, kLanes> vectors{};
        std::size_t count = 0;
        std::array<std::size_t, kLanes> vector{};
        std::array<std::size_t, kLanes> lane{};
    };

    static constexpr Exchange exchangeInto(std::size_t toRegister) {
        Exchange exchange;
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            const Source& source = kLayout.sources[(toRegister * kLanes) + lane];
            const bool isSignal = source.taken == CascadeLayout::Taken::signal;
            const Source from{source.taken, isSignal ? source.index : source.index / kLanes};
            const auto known = static_cast<std::size_t>(
                std::find(exchange.vectors.begin(), exchange.vectors.begin() + exchange.count,
                          from) -
                exchange.vectors.begin());
            if (known == exchange.count) exchange.vectors[exchange.count++] = from;
            exchange.vector[lane] = known;
            exchange.lane[lane] = isSignal ? lane : source.index % kLanes;
        }
        return exchange;
    }

    template <std::size_t... kRegister>
    BEATATLAS_LANES void load(const BankBlock<Plan>& block, std::index_sequence<kRegister...>) {
        (registers_[kRegister].load(block.sections, kRegister * kLanes), ...);
    }

    template <std::size_t... kRegister>
    BEATATLAS_LANES void store(BankBlock<Plan>& block, std::index_sequence<kRegister...>) const {
        (registers_[kRegister].store(block.sections, kRegister * kLanes), ...);
    }

    /** Step k, at which no lane rests. */
    BEATATLAS_LANES void stepInside(BankBlock<Plan>& block, int k) {
        stepInside(block, static_cast<std::size_t>(k), kAll);
    }

    template <std::size_t... kRegister>
    BEATATLAS_LANES void stepInside(BankBlock<Plan>& block, std::size_t k,
                                    std::index_sequence<kRegister...>) {
        const Values late[] = {registers_[kRegister].y2...};
        Values taken[kRegisters]{};
        (gather<kRegister>(block, k, late, taken[kRegister]), ...);
        (registers_[kRegister].take(taken[kRegister]), ...);
        (write<kRegister>(block, k), ...);
    }

    /** Steps from..to-1 of a block of n samples, in any of which some lanes may rest; a resting
     *  lane goes on giving what it has, and so the outputs before the last are kept here. */
    BEATATLAS_LANES void stepsAtBorder(BankBlock<Plan>& block, int n, int from, int to) {
        Values late[kRegisters];
        for (std::size_t r = 0; r < kRegisters; ++r) late[r] = registers_[r].y2;
        for (int k = from; k < to; ++k)
            stepAtBorder(block, static_cast<std::size_t>(k), n, late, kAll);
    }

    template <std::size_t... kRegister>
    BEATATLAS_LANES void stepAtBorder(BankBlock<Plan>& block, std::size_t k, std::int64_t n,
                                      Values* late, std::index_sequence<kRegister...>) {
        const Values later[] = {registers_[kRegister].y1...};
        Values taken[kRegisters]{};
        (gather<kRegister>(block, k, late, taken[kRegister]), ...);
        (takeAtBorder(kRegister, static_cast<std::int64_t>(k), n, taken[kRegister]), ...);
        (write<kRegister>(block, k), ...);
        for (std::size_t r = 0; r < kRegisters; ++r) late[r] = later[r];
    }

    BEATATLAS_LANES void takeAtBorder(std::size_t r, std::int64_t step, std::int64_t n,
                                      const Values& taken) {
        Integers delays;
        loadLanes(delays, kLayout.delays.data() + (r * kLanes));
        const Integers active = ((delays - (step + 1)) & (step - n - delays)) >> 63;
        registers_[r].takeWhere(active, taken);
    }

    /** What the lanes of a register take at step k. */
    template <std::size_t kRegister>
    BEATATLAS_LANES void gather(const BankBlock<Plan>& block, std::size_t k, const Values* late,
                                Values& taken) const {
        read<exchangeInto(kRegister).vectors[0].taken, exchangeInto(kRegister).vectors[0].index>(
            block, k, late, taken);
        if constexpr (exchangeInto(kRegister).count == 1)
            pick<kRegister>(taken, kEach);
        else
            merge<kRegister, 1>(block, k, late, taken);
    }

    template <CascadeLayout::Taken kTaken, std::size_t kIndex>
    BEATATLAS_LANES void read(const BankBlock<Plan>& block, std::size_t k, const Values* late,
                              Values& vector) const {
        if constexpr (kTaken == CascadeLayout::Taken::signal)
            fillLanes(vector, block.signals[kIndex][k]);
        else if constexpr (kTaken == CascadeLayout::Taken::lastOutput)
            vector = registers_[kIndex].y1;
        else
            vector = late[kIndex];
    }

    template <std::size_t kRegister, std::size_t... kLane>
    BEATATLAS_LANES static void pick(Values& taken, std::index_sequence<kLane...>) {
        constexpr Exchange kExchange = exchangeInto(kRegister);
        if constexpr (((kExchange.lane[kLane] != kLane) || ...))
            taken = __builtin_shufflevector(taken, taken, kExchange.lane[kLane]...);
    }

    /** Adds the lanes that come from the vectors of the exchange from kNext on. */
    template <std::size_t kRegister, std::size_t kNext>
    BEATATLAS_LANES void merge(const BankBlock<Plan>& block, std::size_t k, const Values* late,
                               Values& taken) const {
        constexpr Exchange kExchange = exchangeInto(kRegister);
        if constexpr (kNext < kExchange.count) {
            Values next{};
            read<kExchange.vectors[kNext].taken, kExchange.vectors[kNext].index>(block, k, late,
                                                                                 next);
            shuffle<kRegister, kNext>(next, taken, kEach);
            merge<kRegister, kNext + 1>(block, k, late, taken);
        }
    }

    /** With the first two vectors all lanes of both are brought to their positions; lanes of later
     *  vectors are left open. */
    template <std::size_t kRegister, std::size_t kNext, std::size_t... kLane>
    BEATATLAS_LANES static void shuffle(const Values& next, Values& taken,
                                        std::index_sequence<kLane...>) {
        taken = __builtin_shufflevector(taken, next,
                                        shuffleIndex(exchangeInto(kRegister), kNext, kLane)...);
    }

    static constexpr int shuffleIndex(const Exchange& exchange, std::size_t next,
                                      std::size_t lane) {
        const std::size_t vector = exchange.vector[lane];
        if (vector == next) return static_cast<int>(kLanes + exchange.lane[lane]);
        if (vector > next) return -1;
        return static_cast<int>(next == 1 ? exchange.lane[lane] : lane);
    }

    /** Puts down what the register gave at step k, as far as it is an output of the bank. */
    template <std::size_t kRegister>
    BEATATLAS_LANES void write(BankBlock<Plan>& block, std::size_t k) const {
        constexpr std::size_t kFirst = kRegister * kLanes;
        constexpr std::size_t kGroup = kFirst / CascadeLayout::kGroup;
        if constexpr (kLayout.isRowOfMagnitudes[kGroup])
            storeLanes(__builtin_convertvector(registers_[kRegister].y1, Narrow),
                       block.rows[kLayout.rowsBefore(kGroup)][k].data() +
                           (kFirst % CascadeLayout::kGroup));
        else
            writeValues<kRegister>(block, k, kEach);
    }

    template <std::size_t kRegister, std::size_t... kLane>
    BEATATLAS_LANES void writeValues(BankBlock<Plan>& block, std::size_t k,
                                     std::index_sequence<kLane...>) const {
        (writeValue<kLayout.cascadeEndingIn((kRegister * kLanes) + kLane,
                                            BankBlock<Plan>::kCascades)>(
             block, k, registers_[kRegister].y1[kLane]),
         ...);
    }

    template <std::size_t kCascade>
    BEATATLAS_LANES static void writeValue(BankBlock<Plan>& block, std::size_t k, double value) {
        if constexpr (kCascade < BankBlock<Plan>::kCascades) block.values[kCascade][k] = value;
    }

    using Narrow = Lanes<float, kLanes>;
    SectionLanes<kLanes> registers_[kRegisters];
};

}  // namespace beatatlas
