// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "key/CachedFft.h"
#include "key/DecimationBuffer.h"
#include "key/SemitoneBands.h"

namespace beatatlas {

/** The spectrum of one analysis frame, read by semitone bands.
 *
 *  Memory: a window and a frame of 4096 doubles and its spectrum, made in create(); the transform's
 *  tables come with the first frame. */
class KeySpectrum {
public:
    /** @param analysisRate  decimated samples per second */
    void create(double analysisRate);
    void release();

    const SemitoneBands& bands() const { return bands_; }

    /** The magnitude of each band in one frame; all 0 when the transform finds no memory. Valid
     *  until the next call. */
    const std::vector<double>& measure(const DecimationBuffer& samples);

    /** Whether a frame since create() found no memory. */
    bool hasMissedFrames() const { return hasMissedFrames_; }

    int fft(int n, double* re, double* im) { return fft_.fft(n, re, im); }

private:
    SemitoneBands bands_;
    CachedFft fft_;
    std::unique_ptr<double[]> hann_;
    std::unique_ptr<double[]> values_;
    std::unique_ptr<double[]> power_;
    std::vector<double> magnitudes_;
    bool hasMissedFrames_ = false;
};

}  // namespace beatatlas
