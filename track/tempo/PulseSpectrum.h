// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <cstdint>
#include <map>
#include <vector>

namespace beatatlas::track::inner {

/** The magnitude spectrum of a whole track's onsets, with the resolution that the track's length
 *  allows: twelve minutes separate beats of 120.00 BPM from beats of 120.01 BPM.
 *
 *  For a track of hours, a transform of the whole envelope would take gigabytes, of which only a
 *  few thousandths are read. Instead the envelope is cut into overlapping windows of seven seconds.
 *  One bin, followed from window to window, is a slow signal whose spectrum is that of the track
 *  around this bin. These spectra are computed when they are first needed.
 *
 *  Double precision except for the windows' spectra; the caller sets rounding to nearest. */
class PulseSpectrum {
public:
    /** @param envelope  150 values a second, at least one; its mean is subtracted */
    explicit PulseSpectrum(const std::vector<float>& envelope);

    /** |F| at a frequency of at least 0.15 Hz, on an arbitrary scale; 0 above 51 Hz. Interpolates
     *  linearly in a spectrum that is zero-padded to at least eight times its length. Fast for many
     *  frequencies that lie close together. */
    double at(double hz);

    /** The same, computed directly instead of interpolated: for single frequencies. */
    double singleAt(double hz) const;

    /** The strength of a beat of this frequency: the sum of |F| over its harmonics 1, 2, 3, 4, 6
     *  and 8. */
    double pulse(double hz);
    double singlePulse(double hz) const;

private:
    using Magnitudes = std::vector<double>;

    const Magnitudes& bandOf(int bin);
    Magnitudes makeBand(int bin) const;

    std::size_t windows_ = 0;
    std::vector<std::complex<float>> bins_;  // bin by bin, each for all windows
    std::int64_t bandPoints_ = 0;
    std::vector<double> sineTable_;
    std::vector<int> bitReversal_;
    std::map<int, Magnitudes> bands_;
};

}  // namespace beatatlas::track::inner
