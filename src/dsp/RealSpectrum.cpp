// SPDX-License-Identifier: MIT
#include "dsp/RealSpectrum.h"

namespace beatatlas::fft {

namespace {

// Half a period of sines, and a quarter further on their cosines.
CArray<double> thinned(const double* sineTable, std::int64_t size, std::int64_t step) {
    const std::int64_t entries = (3 * size) / (4 * step);
    CArray<double> table = allocateOrNull<double>(entries);
    if (table == nullptr) return table;
    double* to = table.get();
    for (std::int64_t i = 0; i < entries; ++i) to[i] = sineTable[i * step];
    return table;
}

}  // namespace

bool RealSpectrum::create(std::int64_t size, const double* sineTable) {
    size_ = size;
    sineTable_ = sineTable;
    rows_ = allocateOrNull<Rows>(earlyBins());
    lateRows_ = allocateOrNull<Rows>(earlyBins() + 1);
    everySecond_ = thinned(sineTable, size, 2);
    everyFourth_ = thinned(sineTable, size, 4);
    if (rows_ == nullptr || lateRows_ == nullptr || everySecond_ == nullptr ||
        everyFourth_ == nullptr) {
        release();
        return false;
    }
    layRows();
    return true;
}

void RealSpectrum::release() {
    size_ = 0;
    rows_.reset();
    lateRows_.reset();
    everySecond_.reset();
    everyFourth_.reset();
}

// Joining spectra of n bins halves every row. The first half takes the bin on; the second half
// becomes bin n - b of the longer spectrum. Bin n / 2, real before, becomes complex: its second
// half is the new imaginary part.
void RealSpectrum::layRows() {
    Rows* rows = rows_.get();
    std::int64_t count = 0;
    for (std::int64_t n = 2; n <= earlyBins(); n *= 2) {
        const std::int64_t half = size_ / (2 * n);
        const std::int64_t before = count;
        rows[count++] = {n / 2, 2 * half, 3 * half};
        for (std::int64_t i = 0; i < before; ++i)
            rows[count++] = {n - rows[i].bin, rows[i].re + half, rows[i].im + half};
    }
    Rows* late = lateRows_.get();
    for (std::int64_t i = 0; i < count; ++i) late[rows[i].bin] = rows[i];
    late[0] = {0, 0, kNoRow};
    late[earlyBins()] = {earlyBins(), kLateSpectra, kNoRow};
}

void RealSpectrum::run(double* values, double* power) const {
    joinEarly(values);
    joinLate(values, power);
}

}  // namespace beatatlas::fft
