// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace beatatlas::track::inner {

/** A partial of the sound. */
struct SpectralPeak {
    /** Semitones, 69 at 440 Hz. */
    float pitch;
    /** Amplitude relative to that of the largest bin. */
    float strength;
};

/** Finds the local maxima of power spectra from 40 Hz to 3 kHz (or half the rate, if lower) and
 *  interpolates their frequencies between the bins: under a Hann window the logarithm of a
 *  partial's bins is close to a parabola. Keeps only peaks that may enter a chroma, whatever the
 *  tuning turns out to be, or that are strong enough for finding the tuning.
 *
 *  The caller sets rounding to nearest. */
class PeakFinder {
public:
    /** @param rate    of the samples, Hz
     *  @param points  length of the transform */
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
    // Weight of each bin's power in a chroma.
    std::vector<float> weights_;
    // The bins of a frame's maxima.
    std::vector<int> bins_;
};

inline constexpr double kPitchOfA4 = 69.0;

/** The pitch of a frequency in semitones, 69 at 440 Hz; and the reverse. */
double pitchOf(double hz);
double hzOfPitch(double pitch);

}  // namespace beatatlas::track::inner
