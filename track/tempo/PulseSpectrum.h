// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <cstdint>
#include <map>
#include <vector>

namespace beatatlas::track::inner {

/** The magnitude spectrum of a whole track's onsets, to the precision that the track's length
 *  gives: twelve minutes tell beats of 120.00 from beats of 120.01 BPM apart.
 *
 *  A transform of the whole envelope would take gigabytes for a track of hours, of which the
 *  answers read a few thousandths. Instead the envelope is cut into overlapping windows of seven
 *  seconds; one bin of all their spectra, followed from window to window, is a slow signal whose
 *  spectrum is that of the track about this bin. Bins are made as they are asked for.
 *
 *  Double precision but for the windows' spectra; rounding to nearest, which the caller sees to. */
class PulseSpectrum {
public:
    /** @param envelope  150 values a second; its mean is left out. At least one */
    explicit PulseSpectrum(const std::vector<float>& envelope);

    /** |F| at a frequency from 0.15 Hz, on an arbitrary scale and 0 above 51 Hz; linear between the
     *  points of a spectrum that is padded with zeros to eight times its length or more. Quick
     *  where many frequencies lie close together. */
    double at(double hz);

    /** The same without the points between: for single frequencies. */
    double singleAt(double hz) const;

    /** How strong a beat of this frequency is: the sum of |F| over its harmonics 1, 2, 3, 4, 6 and
     *  8. */
    double pulse(double hz);
    double singlePulse(double hz) const;

private:
    using Magnitudes = std::vector<double>;

    const Magnitudes& bandOf(int bin);
    Magnitudes makeBand(int bin) const;

    std::size_t windows_ = 0;
    std::vector<std::complex<float>> bins_;  // one bin of all windows after the other
    std::int64_t bandPoints_ = 0;
    std::vector<double> sineTable_;
    std::vector<int> bitReversal_;
    std::map<int, Magnitudes> bands_;
};

}  // namespace beatatlas::track::inner
