// SPDX-License-Identifier: MIT
#include "key/SemitoneBands.h"

#include <algorithm>
#include <cmath>

#include "key/pitchClasses.h"

namespace beatatlas {

namespace {

constexpr double kLowestHz = 110.0;  // A2: below it bins are wider than semitones
constexpr double kHighestHz = 20000.0;
constexpr double kOctavesEndHz = 28160.0;

/** The frequency so many semitones above another. */
double transposed(double hz, double semitones) {
    return hz * std::pow(2.0, semitones / 12.0);
}

}  // namespace

void SemitoneBands::create(int bins, double binHz) {
    release();
    layBands();
    findBins(bins, binHz);
}

void SemitoneBands::release() {
    lower_.clear();
    upper_.clear();
    bins_.clear();
}

void SemitoneBands::layBands() {
    for (double octave = kLowestHz; octave < kOctavesEndHz; octave *= 2.0) {
        for (int s = 0; s < kPitchClasses; ++s) {
            const double lower = transposed(octave, static_cast<double>(s) - 0.5);
            if (lower > kHighestHz) return;
            lower_.push_back(lower);
            upper_.push_back(transposed(octave, static_cast<double>(s) + 0.5));
        }
    }
}

// The walk never goes back: a bin belongs to one band.
void SemitoneBands::findBins(int bins, double binHz) {
    int bin = 0;
    for (std::size_t band = 0; band < lower_.size(); ++band) {
        while (bin < bins && static_cast<double>(bin) * binHz < lower_[band]) ++bin;
        const int first = bin;
        while (bin < bins && static_cast<double>(bin) * binHz < upper_[band]) ++bin;
        bins_.push_back({first, bin});
    }
}

void SemitoneBands::measure(const double* re, const double* im, double* out) const {
    for (const Bins& bins : bins_) {
        // The square root rises with its argument, rounded or not: one root per band gives the same bits.
        double largest = 0.0;
        for (int i = bins.first; i < bins.end; ++i)
            largest = std::max(largest, (re[i] * re[i]) + (im[i] * im[i]));
        *out++ = std::sqrt(largest);
    }
}

}  // namespace beatatlas
