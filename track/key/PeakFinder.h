// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** A partial of what sounds. */
struct SpectralPeak {
    float pitch;     // semitones, 69 at 440 Hz
    float strength;  // amplitude as a part of the largest bin's
};

/** Finds the local maxima of power spectra from 40 Hz to 3 kHz, or to half the rate where that is
 *  less, and places them between the bins: under a Hann window the logarithm of a partial's bins is
 *  close to a parabola. Only those are placed that may be heard in a chroma, whatever the tuning
 *  turns out to be, or tell of the tuning.
 *
 *  Rounds to nearest, which the caller sees to. */
class PeakFinder {
public:
    /** @param rate    of the samples, Hz
     *  @param points  of a spectrum */
    PeakFinder(double rate, int points);

    /** @param powers  |X|² of the bins 0 … points / 2 − 1
     *  @param peaks   receives the peaks, ascending in pitch
     *  @return the amplitude of the largest bin; 0 in silence, which has no peaks */
    float find(const float* powers, std::vector<SpectralPeak>& peaks);

private:
    float findBins(const float* powers, float largest);
    SpectralPeak place(const float* powers, int bin, double largestLevel) const;

    double hzPerBin_;
    int firstBin_;
    int endBin_;
    std::vector<float> weights_;  // of the power of each bin in a chroma
    std::vector<int> bins_;       // of a frame's maxima
};

inline constexpr double kPitchOfA4 = 69.0;

/** Semitones, 69 at 440 Hz. */
double pitchOf(double hz);
double hzOfPitch(double pitch);

}  // namespace beatatlas::track::inner
