// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "dsp/lanes/vectorLanes.h"

namespace beatatlas::fft {

/** Bins of spectra of real values, one in each lane. */
template <std::size_t kWidth>
struct Bins {
    BEATATLAS_LANES void load(const double* reFrom, const double* imFrom) {
        loadLanes(re, reFrom);
        loadLanes(im, imFrom);
    }
    BEATATLAS_LANES void store(double* reTo, double* imTo) const {
        storeLanes(re, reTo);
        storeLanes(im, imTo);
    }

    Lanes<double, kWidth> re;
    Lanes<double, kWidth> im;
};

/** Joins bins b of two spectra of n bins, of the even and of the odd values: near is bin b of the
 *  joint spectrum, far is bin n - b. The operations of rotatePairs(), with the conjugate taken of
 *  what it calls i + k. */
template <std::size_t kWidth>
BEATATLAS_LANES void join(const Lanes<double, kWidth>& c, const Lanes<double, kWidth>& s,
                          const Bins<kWidth>& even, const Bins<kWidth>& odd, Bins<kWidth>& near,
                          Bins<kWidth>& far) {
    const Lanes<double, kWidth> dx = (c * odd.re) + (s * odd.im);
    const Lanes<double, kWidth> dy = (c * odd.im) - (s * odd.re);
    const Bins<kWidth> start = even;
    far.re = start.re - dx;
    far.im = dy - start.im;
    near.re = start.re + dx;
    near.im = start.im + dy;
}

}  // namespace beatatlas::fft
