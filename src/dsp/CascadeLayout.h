// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace beatatlas {

/** One cascade of second-order sections in a filter bank. */
struct Cascade {
    /** What a bank gives of a cascade: what leaves its last section, in double; or the magnitudes
     *  of that, in float. */
    enum class Output { values, magnitudes };

    /** Index of the bank's signal that the first section takes. */
    std::size_t signal;
    /** How many sections there are, 1 to 4. */
    std::size_t sections;
    Output output;
};

/** Where the sections of up to eight cascades lie in sixteen lanes, and what each lane takes at a
 *  step.
 *
 *  The first section of cascade c has lane c and takes sample t at step t. Its second section has
 *  lane c + 8 and takes what the first gave a step ago. A third and a fourth section have an upper
 *  lane that no second section needs. They take an output of their own half of the lanes; a
 *  register is ready only when the slowest of its lanes is, so they take the output before the
 *  last: the one way through all five coefficients then spreads over two steps, which the feedback
 *  of every section takes anyway.
 *
 *  Which lanes are neighbours decides how many exchanges between registers a step needs: cascades
 *  over the same signal are best listed side by side, and in groups of four those that give
 *  magnitudes. */
struct CascadeLayout {
    static constexpr std::size_t kHalf = 8;
    static constexpr std::size_t kLanes = 2 * kHalf;
    static constexpr std::size_t kMostSections = 4;
    /** Lanes whose outputs may stand together in a row. */
    static constexpr std::size_t kGroup = 4;
    static constexpr std::size_t kGroups = kLanes / kGroup;

    enum class Taken { signal, lastOutput, outputBeforeLast };

    /** What a lane takes: a signal, or an output of another lane. */
    struct Source {
        Taken taken;
        std::size_t index;

        constexpr bool operator==(const Source&) const = default;
    };

    /** By lane. */
    std::array<Source, kLanes> sources{};
    /** By how many samples each lane is behind the step. */
    std::array<std::int64_t, kLanes> delays{};
    /** By cascade and section. */
    std::array<std::array<std::size_t, kMostSections>, kHalf> lanes{};
    /** By cascade: the lane of its last section. */
    std::array<std::size_t, kHalf> lastLanes{};
    /** By group: whether all its lanes end cascades that give magnitudes, with the same delay. */
    std::array<bool, kGroups> isRowOfMagnitudes{};
    /** The largest delay: a block of n samples takes n + depth steps. */
    int depth = 0;

    /** Which cascade gives the outputs of a lane; kHalf when none does. */
    constexpr std::size_t cascadeEndingIn(std::size_t lane, std::size_t cascades) const {
        for (std::size_t c = 0; c < cascades; ++c)
            if (lastLanes[c] == lane) return c;
        return kHalf;
    }

    /** How many rows of magnitudes there are in the groups before this one. */
    constexpr std::size_t rowsBefore(std::size_t group) const {
        std::size_t rows = 0;
        for (std::size_t g = 0; g < group; ++g)
            if (isRowOfMagnitudes[g]) ++rows;
        return rows;
    }

    template <std::size_t kCascades>
    static constexpr CascadeLayout of(const std::array<Cascade, kCascades>& cascades) {
        static_assert(kCascades <= kHalf);
        CascadeLayout layout;
        layout.placeFirstAndSecond(cascades);
        layout.placeLater(cascades);
        for (std::size_t c = 0; c < kCascades; ++c) {
            layout.lastLanes[c] = layout.lanes[c][cascades[c].sections - 1];
            layout.depth =
                std::max(layout.depth, static_cast<int>(layout.delays[layout.lastLanes[c]]));
        }
        for (std::size_t group = 0; group < kGroups; ++group)
            layout.isRowOfMagnitudes[group] = layout.endMagnitudes(cascades, group * kGroup);
        return layout;
    }

private:
    constexpr void place(std::size_t lane, Source source, std::int64_t delay) {
        sources[lane] = source;
        delays[lane] = delay;
    }

    /** Lanes that no cascade needs take as if one did. */
    template <std::size_t kCascades>
    constexpr void placeFirstAndSecond(const std::array<Cascade, kCascades>& cascades) {
        for (std::size_t c = 0; c < kHalf; ++c) {
            place(c, {Taken::signal, c < kCascades ? cascades[c].signal : 0}, 0);
            place(c + kHalf, {Taken::lastOutput, c}, 1);
        }
        for (std::size_t c = 0; c < kCascades; ++c) lanes[c] = {c, c + kHalf, 0, 0};
    }

    /** Third and fourth sections, in the lowest upper lanes without a second one. */
    template <std::size_t kCascades>
    constexpr void placeLater(const std::array<Cascade, kCascades>& cascades) {
        std::array<bool, kHalf> isTaken{};
        for (std::size_t c = 0; c < kCascades; ++c) isTaken[c] = cascades[c].sections > 1;
        for (std::size_t c = 0; c < kCascades; ++c)
            for (std::size_t s = 2; s < cascades[c].sections; ++s) {
                // An index outside the array, and so no constant, when there is no lane left.
                const auto free = static_cast<std::size_t>(
                    std::find(isTaken.begin(), isTaken.end(), false) - isTaken.begin());
                isTaken.at(free) = true;
                const std::size_t before = lanes[c][s - 1];
                lanes[c][s] = free + kHalf;
                place(free + kHalf, {Taken::outputBeforeLast, before}, delays[before] + 2);
            }
    }

    template <std::size_t kCascades>
    constexpr bool endMagnitudes(const std::array<Cascade, kCascades>& cascades,
                                 std::size_t firstLane) const {
        for (std::size_t lane = firstLane; lane < firstLane + kGroup; ++lane) {
            const std::size_t c = cascadeEndingIn(lane, kCascades);
            if (c == kHalf || cascades[c].output != Cascade::Output::magnitudes ||
                delays[lane] != delays[firstLane])
                return false;
        }
        return true;
    }
};

}  // namespace beatatlas
