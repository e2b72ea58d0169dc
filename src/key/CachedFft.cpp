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
    transform(n < 0, re, im);
    if (n > 0) divideByLength(re, im);
    return 0;
}

void CachedFft::transform(bool inverse, double* re, double* im) const {
    if (fft::LaneTransform::takes(size_))
        lanes_.run(inverse, re, im);
    else
        fft::transform(size_, inverse, sineTable_.get(), bitReversal_.get(), re, im);
}

void CachedFft::divideByLength(double* re, double* im) const {
    if (fft::LaneTransform::takes(size_)) return lanes_.divideByLength(re, im);
    for (std::int64_t i = 0; i < size_; ++i) {
        re[i] /= static_cast<double>(size_);
        im[i] /= static_cast<double>(size_);
    }
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
    if (fft::LaneTransform::takes(size) &&
        !lanes_.create(size, sineTable_.get(), bitReversal_.get())) {
        release();
        return false;
    }
    size_ = size;
    return true;
}

void CachedFft::release() {
    size_ = 0;
    sineTable_.reset();
    bitReversal_.reset();
    lanes_.release();
}

}  // namespace beatatlas
