// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "dsp/CArray.h"

namespace beatatlas::fft {

/** transform() of fftCore.h for doubles, bit for bit, with butterflies side by side in vector lanes.
 *
 *  The butterflies of a stage do not depend on each other, and each does here what it does there. What differs is
 *  where the values lie. The first stages join values far apart: before the reordering, neighbours share their
 *  twiddle factor, and whole runs of them are taken with one factor. The last three join values that are then too
 *  close: they come after the reordering, where neighbours take neighbouring factors, copied out of the sine table
 *  for the stages that would skip entries of it.
 *
 *  Memory: the tables of the plain form and less than half of a sine table beside, from create() on. */
class LaneTransform {
public:
    /** Lengths that it takes: powers of two from 64 up. */
    static bool takes(std::int64_t size) { return size >= 64 && (size & (size - 1)) == 0; }

    /** @param sineTable, bitReversal  of that size; they must outlive the use
     *  @return false without memory */
    bool create(std::int64_t size, const double* sineTable, const int* bitReversal);

    void release();

    /** In place, without any scaling. */
    void run(bool inverse, double* re, double* im) const;

    /** Divides every value by the length: a power of two, so the product with its inverse is the quotient. */
    void divideByLength(double* re, double* im) const;

private:
    /** Sines and cosines of the angles of one stage, one after the other. */
    struct Twiddles {
        const double* sines;
        const double* cosines;
    };

    template <std::size_t kWidth>
    struct EarlyStages;
    template <std::size_t kWidth>
    struct LateStages;
    template <std::size_t kWidth>
    struct Scaling;

    Twiddles twiddlesOf(std::int64_t k) const;

    std::int64_t size_ = 0;
    const double* sineTable_ = nullptr;
    const int* bitReversal_ = nullptr;
    CArray<double> everySecond_;  // of the sine table's entries, as far as sines and cosines reach
    CArray<double> everyFourth_;
};

}  // namespace beatatlas::fft
