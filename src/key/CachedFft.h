// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "dsp/CArray.h"
#include "dsp/RealSpectrum.h"

namespace beatatlas {

/** Radix-2 transform in double precision that keeps its tables from call to call. */
class CachedFft {
public:
    /** Transforms re + i·im in place.
     *
     *  @param n  n > 0: forward with e^(-2πi jk / n), every output divided by n. n < 0: inverse of
     *            |n| points with e^(+2πi jk / |n|), not divided. |n| is a power of two from 4 up;
     *            other lengths give numbers without meaning. 0: frees the tables.
     *  @return 0; or 1 with a message on standard error when there is no memory for the tables: the
     *          arrays are as they were then */
    int fft(int n, double* re, double* im);

    /** The squared magnitudes that fft(n, values, zeros) leads to, bit for bit, of the bins 0
     *  to n / 2.
     *
     *  @param n       a power of four from 256 up
     *  @param values  are used up
     *  @return as fft() does */
    int power(int n, double* values, double* power);

    void release();

private:
    bool makeTables(std::int64_t size);

    std::int64_t size_ = 0;  // of the cached tables; 0: none
    CArray<double> sineTable_;
    CArray<int> bitReversal_;
    fft::RealSpectrum real_;  // reads the sine table; not created before power() is called
};

}  // namespace beatatlas
