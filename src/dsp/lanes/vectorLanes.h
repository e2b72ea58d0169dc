// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "dsp/lanes/VectorForm.h"

/** Values side by side in one register, for kernels that are written once for every width.
 *
 *  An operation on lanes acts on each of them as it would on a value of its own, rounding included:
 *  a kernel that gives every value the operations of the plain form in the same order gives its
 *  bits, whatever the width. */
namespace beatatlas {

template <typename T, std::size_t kCount>
struct LaneVector {
    using Type [[gnu::vector_size(sizeof(T) * kCount)]] = T;
};

/** kCount values of T, kCount a power of two. */
template <typename T, std::size_t kCount>
using Lanes = typename LaneVector<T, kCount>::Type;

// By reference: how a wide vector is passed by value depends on the vector unit.
template <typename Vector, typename T>
BEATATLAS_LANES void loadLanes(Vector& lanes, const T* from) {
    std::memcpy(&lanes, from, sizeof(Vector));
}

template <typename Vector, typename T>
BEATATLAS_LANES void storeLanes(const Vector& lanes, T* to) {
    std::memcpy(to, &lanes, sizeof(Vector));
}

template <typename Vector, typename T, std::size_t... kLane>
BEATATLAS_LANES void fillLanes(Vector& lanes, T value, std::index_sequence<kLane...>) {
    lanes = Vector{(static_cast<void>(kLane), value)...};
}

/** The same value in every lane. */
template <typename Vector, typename T>
BEATATLAS_LANES void fillLanes(Vector& lanes, T value) {
    fillLanes(lanes, value, std::make_index_sequence<sizeof(Vector) / sizeof(T)>{});
}

template <std::size_t kCount, std::size_t... kLane>
BEATATLAS_LANES void convertLanes(const Lanes<std::int32_t, kCount>& from,
                                  Lanes<double, kCount>& to, std::index_sequence<kLane...>) {
    to = Lanes<double, kCount>{static_cast<double>(from[kLane])...};
}

/** Whole numbers as doubles. */
template <std::size_t kCount>
BEATATLAS_LANES void convertLanes(const Lanes<std::int32_t, kCount>& from,
                                  Lanes<double, kCount>& to) {
    // Each compiler makes one instruction of its own spelling and several of the other.
#if defined(__clang__)
    to = __builtin_convertvector(from, Lanes<double, kCount>);
#else
    convertLanes<kCount>(from, to, std::make_index_sequence<kCount>{});
#endif
}

#if BEATATLAS_WIDE_FORMS
template <class Kernel, class... Arguments>
BEATATLAS_AVX512 void runForAvx512(Arguments... arguments) {
    Kernel::run(arguments...);
}

template <class Kernel, class... Arguments>
BEATATLAS_AVX2 void runForAvx2(Arguments... arguments) {
    Kernel::run(arguments...);
}
#endif

/** Calls Kernel<W>::run(arguments…), W being the doubles in a register of the form in use: 2, 4 or
 *  8, but kWidest at the most. run() is marked BEATATLAS_LANES, so that it takes on the registers
 *  of its caller. */
template <template <std::size_t> class Kernel, std::size_t kWidest = 8, class... Arguments>
void runInLanes(Arguments... arguments) {
#if BEATATLAS_WIDE_FORMS
    const VectorForm form = vectorForm();
    if constexpr (kWidest >= 8)
        if (form == VectorForm::avx512) return runForAvx512<Kernel<8>, Arguments...>(arguments...);
    if (form >= VectorForm::avx2) return runForAvx2<Kernel<4>, Arguments...>(arguments...);
#endif
    Kernel<2>::run(arguments...);
}

}  // namespace beatatlas
