// SPDX-License-Identifier: MIT
#include "key/CachedFft.h"

#include <cstdio>
#include <cstdlib>

#include "dsp/fftCore.h"

namespace beatatlas {

int CachedFft::fft(int n, double* re, double* im) {
    const std::int64_t size = std::abs(static_cast<std::int64_t>(n));
    if (size == 0) {
        release();
        return 0;
    }
    if (size != size_ && !makeTables(size)) {
        std::fputs("記憶領域不足\n", stderr);
        return 1;
    }
    fft::transform(size, n < 0, sineTable_.get(), bitReversal_.get(), re, im);
    for (std::int64_t i = 0; i < n; ++i) {
        re[i] /= static_cast<double>(n);
        im[i] /= static_cast<double>(n);
    }
    return 0;
}

bool CachedFft::makeTables(std::int64_t size) {
    release();
    sineTable_ = allocateOrNull<double>(fft::sineTableLength(size));
    bitReversal_ = allocateOrNull<int>(size);
    if (sineTable_ == nullptr || bitReversal_ == nullptr) {
        release();
        return false;
    }
    fft::fillSineTable(size, sineTable_.get());
    fft::fillBitReversal(size, bitReversal_.get());
    size_ = size;
    return true;
}

void CachedFft::release() {
    size_ = 0;
    sineTable_.reset();
    bitReversal_.reset();
}

}  // namespace beatatlas
