// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <type_traits>

namespace beatatlas {

/** Whether two numbers are the same to the bit: a zero and a negative zero are not, a NaN and
 *  itself are. */
template <class T>
bool sameBits(T a, T b) {
    using Bits =
        std::conditional_t<sizeof(T) == 8, std::uint64_t,
                           std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint16_t>>;
    return std::bit_cast<Bits>(a) == std::bit_cast<Bits>(b);
}

/** Whether all of n ≥ 1 values are the same to the bit. Of music the first two decide it. */
template <class T>
bool isConstant(const T* values, int n) {
    return std::all_of(values, values + n, [values](T value) { return sameBits(value, *values); });
}

}  // namespace beatatlas
