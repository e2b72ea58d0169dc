// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>

#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

/** Lanes of a and b in turn, from lane kFrom of each group of kRows lanes. */
template <std::size_t kRows, std::size_t kFrom, class Vector, std::size_t... kLane>
BEATATLAS_LANES void interleaveLanes(const Vector& a, const Vector& b, Vector& interleaved,
                                     std::index_sequence<kLane...>) {
    constexpr std::size_t kCount = sizeof...(kLane);
    interleaved = __builtin_shufflevector(
        a, b,
        (((kLane / kRows) * kRows) + kFrom + ((kLane % kRows) / 2) + ((kLane % 2) * kCount))...);
}

/** Transposes squares of kRows × kRows values, kRows a power of two: kRows vectors hold as many
 *  squares as each has groups of kRows lanes. Lane l of a group of vector v goes to lane v of the
 *  same group of vector l. */
template <std::size_t kRows, class Vector>
BEATATLAS_LANES void transposeLanes(Vector* vectors) {
    constexpr auto kLanes =
        std::make_index_sequence<sizeof(Vector) / sizeof(decltype(Vector{}[0]))>{};
    constexpr std::size_t kHalf = kRows / 2;
    for (std::size_t round = 1; round < kRows; round *= 2) {
        Vector interleaved[kRows];
        for (std::size_t v = 0; v < kHalf; ++v) {
            const Vector& a = vectors[v];
            const Vector& b = vectors[kHalf + v];
            interleaveLanes<kRows, 0>(a, b, interleaved[2 * v], kLanes);
            interleaveLanes<kRows, kHalf>(a, b, interleaved[(2 * v) + 1], kLanes);
        }
        for (std::size_t v = 0; v < kRows; ++v) vectors[v] = interleaved[v];
    }
}

/** Four values of each of four signals: to[i][s] = from[s][i]. */
BEATATLAS_LANES void transposeFour(const float* const* from, float* const* to) {
    Lanes<float, 4> rows[4];
    for (std::size_t s = 0; s < 4; ++s) loadLanes(rows[s], from[s]);
    transposeLanes<4>(rows);
    for (std::size_t i = 0; i < 4; ++i) storeLanes(rows[i], to[i]);
}

}  // namespace beatatlas
