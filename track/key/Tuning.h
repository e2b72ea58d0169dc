// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <vector>

#include "track/key/PeakFinder.h"

namespace beatatlas::track::inner {

/** How far a track's instruments are from semitones counted from 440 Hz: the mean direction of
 *  all its peaks on a circle of one semitone, which no single wrong note can turn far. */
class Tuning {
public:
    void add(const std::vector<SpectralPeak>& frame);

    /** −0.5 … 0.5, above 0 where the track is higher; 0 where there is nothing to go by. */
    double semitones() const;

private:
    std::complex<double> sum_;
};

}  // namespace beatatlas::track::inner
