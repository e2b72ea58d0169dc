// SPDX-License-Identifier: MIT
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "beatatlas/dsp.h"
#include "dsp/fftCore.h"

namespace {

struct CFree {
    void operator()(void* block) const { std::free(block); }
};

template <typename T>
using CArray = std::unique_ptr<T[], CFree>;

/** From the C allocator, so that a refusal is a null and not an exception. Zeroed: the entries that a length
 *  which is no multiple of 4 leaves out of the sine table are read as 0. */
template <typename T>
CArray<T> allocate(std::int64_t entries) {
    return CArray<T>(static_cast<T*>(std::calloc(static_cast<std::size_t>(entries), sizeof(T))));
}

}  // namespace

void make_sintbl(int n, float* table) {
    beatatlas::fft::fillSineTable<float>(n, table);
}

int make_bitrev(int n, int* table) {
    beatatlas::fft::fillBitReversal(n, table);
    return 0;
}

int fft_less_normalize(int n, float* re, float* im) {
    const std::int64_t m = std::abs(static_cast<std::int64_t>(n));
    if (m == 0) return 0;
    const CArray<float> sineTable = allocate<float>(beatatlas::fft::sineTableLength(m));
    const CArray<int> bitReversal = allocate<int>(m);
    if (sineTable == nullptr || bitReversal == nullptr) {
        std::fputs("malloc error\n", stderr);
        return 1;
    }
    beatatlas::fft::fillSineTable(m, sineTable.get());
    beatatlas::fft::fillBitReversal(m, bitReversal.get());
    beatatlas::fft::transform(m, n < 0, sineTable.get(), bitReversal.get(), re, im);
    return 0;
}

void calc_mag(int n, float* out, float* re, float* im) {
    for (int i = 0; i < n; ++i) out[i] = std::sqrt((re[i] * re[i]) + (im[i] * im[i]));
}

void calc_phase(int n, float* out, float* re, float* im) {
    for (int i = 0; i < n; ++i) out[i] = std::atan2(im[i], re[i]);
}
