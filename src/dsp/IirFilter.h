// SPDX-License-Identifier: MIT
#pragma once

#include "dsp/SecondOrderSection.h"

namespace beatatlas {

/** One second-order recursive section in double precision, direct form I.
 *
 *  The designs are those of the audio equaliser cookbook (R. Bristow-Johnson): bilinear transforms
 *  of analogue prototypes. Frequencies and sample rates are in Hz, q is the quality factor
 *  (0.70710677 for Butterworth), a bandwidth is in octaves. Nothing is validated: a q of 0 or a
 *  frequency at half the sample rate yields a section whose output means nothing.
 *
 *  A fresh section passes its input through unchanged. A design replaces the coefficients and
 *  leaves the signal history alone; the history carries the signal from block to block. */
class IirFilter {
public:
    IirFilter() = default;
    IirFilter(const IirFilter&) = delete;
    IirFilter& operator=(const IirFilter&) = delete;
    virtual ~IirFilter() = default;

    /** Changes nothing: a fresh section is the identity already. */
    void createThroughFilter() {}
    void createHiPathFilter(float freq, float sampleRate, float q);
    void createLowPathFilter(float freq, float sampleRate, float q);
    /** Band-pass of peak gain 1, its width given in octaves between the -3 dB points. */
    void createBandPathFilterW(float freq, float sampleRate, float bandwidth);
    /** Band-pass of peak gain 1, its width given as a quality factor. */
    void createBandPathFilterQ(float freq, float sampleRate, float q);

    /** Filters one block of len samples; in and out are different arrays. len ≤ 0 does nothing. */
    void operate(const double* in, double* out, int len) { section_.operate(in, out, len); }

    const SecondOrderSection& section() const { return section_; }

private:
    struct Corner;

    void setBandPass(const Corner& corner, double alpha);

    SecondOrderSection section_;
};

}  // namespace beatatlas
