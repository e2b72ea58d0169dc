// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "dsp/constants.h"

/** The radix-2 transform and its tables, in either precision. Lengths are 64-bit so that no index
 *  overflows. A length that is no power of two yields numbers without meaning, but stays inside its
 *  arrays and ends. */
namespace beatatlas::fft {

/** Entries of a sine table of period n: a period and a quarter, so that cosines are read n/4
 *  further on. */
constexpr std::int64_t sineTableLength(std::int64_t n) {
    return n + (n / 4);
}

/** The first quarter of the period by the rotation recurrence of R. Singleton: one sine serves the
 *  whole table. */
template <typename T>
void fillFirstQuarter(std::int64_t n, T* table) {
    const T t = static_cast<T>(std::sin(kPi / static_cast<double>(n)));
    T dc = (T{2} * t) * t;
    const auto start = static_cast<double>(dc);
    auto ds = static_cast<T>(std::sqrt(start * (2.0 - start)));
    const T t2 = T{2} * dc;
    T c{1};
    T s{0};
    table[n / 4] = T{1};
    table[0] = T{0};
    for (std::int64_t i = 1; i < n / 8; ++i) {
        c -= dc;
        dc += t2 * c;
        s += ds;
        ds -= t2 * s;
        table[i] = s;
        table[(n / 4) - i] = c;
    }
    // One float literal for float, one double literal for double: each the nearest to the root of
    // one half.
    if constexpr (sizeof(T) == sizeof(float)) {
        if (n / 8 != 0) table[n / 8] = 0.70710677F;
    } else {
        if (n / 8 != 0) table[n / 8] = 0.70710678118654752440;
    }
}

template <typename T>
void fillSineTable(std::int64_t n, T* table) {
    if (n <= 0) return;
    fillFirstQuarter(n, table);
    for (std::int64_t i = 0; i < n / 4; ++i) table[(n / 2) - i] = table[i];
    for (std::int64_t i = 0; i < (n / 2) + (n / 4); ++i) table[i + (n / 2)] = -table[i];
}

/** table[i] = i with its bits reversed, by a counter that carries from the top bit down. */
inline void fillBitReversal(std::int64_t n, int* table) {
    if (n <= 0) return;
    table[0] = 0;
    std::int64_t j = 0;
    for (std::int64_t i = 1; i < n; ++i) {
        std::int64_t k = n / 2;
        while (k > 0 && j >= k) {
            j -= k;
            k /= 2;
        }
        j += k;
        table[i] = static_cast<int>(j);
    }
}

template <typename T>
void reorder(std::int64_t m, const int* bitReversal, T* re, T* im) {
    for (std::int64_t i = 0; i < m; ++i) {
        const std::int64_t r = bitReversal[i];
        if (i >= r) continue;
        std::swap(re[i], re[r]);
        std::swap(im[i], im[r]);
    }
}

/** The butterflies of one twiddle factor: all pairs (i, i + k) that share the angle. */
template <typename T>
void rotatePairs(std::int64_t first, std::int64_t k, std::int64_t m, T c, T s, T* re, T* im) {
    for (std::int64_t i = first; i + k < m; i += 2 * k) {
        const std::int64_t ik = i + k;
        const T dx = (c * re[ik]) + (s * im[ik]);
        const T dy = (c * im[ik]) - (s * re[ik]);
        re[ik] = re[i] - dx;
        re[i] = re[i] + dx;
        im[ik] = im[i] - dy;
        im[i] = im[i] + dy;
    }
}

/** The whole transform of m points, without any scaling. Forward uses e^(-i…), inverse e^(+i…). */
template <typename T>
void transform(std::int64_t m, bool inverse, const T* sineTable, const int* bitReversal, T* re,
               T* im) {
    reorder(m, bitReversal, re, im);
    for (std::int64_t k = 1; k < m; k *= 2) {
        const std::int64_t step = m / (2 * k);
        std::int64_t h = 0;
        for (std::int64_t j = 0; j < k; ++j) {
            const T c = sineTable[h + (m / 4)];
            const T s = inverse ? -sineTable[h] : sineTable[h];
            rotatePairs(j, k, m, c, s, re, im);
            h += step;
        }
    }
}

}  // namespace beatatlas::fft
