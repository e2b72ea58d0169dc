// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <vector>

#include "track/key/PeakFinder.h"

namespace beatatlas::track::inner {

/** How far a track's tuning lies from the semitones relative to 440 Hz: the mean direction of all
 *  its peaks on a circle of one semitone, which a single wrong note hardly changes. */
class Tuning {
public:
    void add(const std::vector<SpectralPeak>& frame);

    /** −0.5 … 0.5 semitones, positive if the track is tuned higher; 0 if there were no peaks. */
    double semitones() const;

private:
    std::complex<double> sum_;
};

}  // namespace beatatlas::track::inner
