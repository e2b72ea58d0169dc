// SPDX-License-Identifier: MIT
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "beatatlas/dsp.h"
#include "dsp/CArray.h"
#include "dsp/fftCore.h"

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
    const auto sineTable = beatatlas::allocateOrNull<float>(beatatlas::fft::sineTableLength(m));
    const auto bitReversal = beatatlas::allocateOrNull<int>(m);
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
