// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>

namespace beatatlas {

/** The one conversion of a real number to a 32-bit integer: toward zero.
 *
 *  NaN, infinities and values outside int32 give the most negative int32, the answer of the
 *  hardware's own conversion, made explicit here because the language leaves it undefined. */
constexpr std::int32_t truncToInt32(double value) {
    // Both bounds are exact doubles; the comparison is false for NaN.
    if (value > -2147483649.0 && value < 2147483648.0) return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
}

/** As the double form: each float is a double, so the answer is the same. */
constexpr std::int32_t truncToInt32(float value) {
    if (value >= -2147483648.0F && value < 2147483648.0F) return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
}

/** Toward zero to 64 bits; the most negative int64 for NaN, infinities and values outside. */
constexpr std::int64_t truncToInt64(double value) {
    if (value >= -9223372036854775808.0 && value < 9223372036854775808.0)
        return static_cast<std::int64_t>(value);
    return std::numeric_limits<std::int64_t>::min();
}

/** The low 16 bits of truncToInt32, as a signed sample: wraps, does not saturate. */
constexpr std::int16_t truncToInt16(double value) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(truncToInt32(value)));
}

constexpr std::int16_t truncToInt16(float value) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(truncToInt32(value)));
}

/** Addition that wraps at 32 bits, for positions and sums of absurd input. */
constexpr std::int32_t wrappingAdd(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

/** Subtraction that wraps at 32 bits. */
constexpr std::int32_t wrappingSubtract(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

}  // namespace beatatlas
