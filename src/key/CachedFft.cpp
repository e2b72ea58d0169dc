// SPDX-License-Identifier: MIT
#include "key/CachedFft.h"

#include <cstdio>
#include <cstdlib>

#include "dsp/fftCore.h"

namespace beatatlas {

namespace {

int reportShortage() {
    std::fputs("記憶領域不足\n", stderr);
    return 1;
}

}  // namespace

int CachedFft::fft(int n, double* re, double* im) {
    const std::int64_t size = std::abs(static_cast<std::int64_t>(n));
    if (size == 0) {
        release();
        return 0;
    }
    if (size != size_ && !makeTables(size)) return reportShortage();
    fft::transform(size, n < 0, sineTable_.get(), bitReversal_.get(), re, im);
    if (n < 0) return 0;
    for (std::int64_t i = 0; i < size; ++i) {
        re[i] /= static_cast<double>(size);
        im[i] /= static_cast<double>(size);
    }
    return 0;
}

int CachedFft::power(int n, double* values, double* power) {
    if (n != size_ && !makeTables(n)) return reportShortage();
    if (n != real_.size() && !real_.create(n, sineTable_.get())) return reportShortage();
    real_.run(values, power);
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
    real_.release();
}

}  // namespace beatatlas
