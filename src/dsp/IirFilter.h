// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** One second-order recursive section in double precision, direct form I.
 *
 *  The designs are those of the audio equaliser cookbook (R. Bristow-Johnson): bilinear transforms of analogue
 *  prototypes. Frequencies and sample rates are in Hz, q is the quality factor (0.70710677 for Butterworth), a
 *  bandwidth is in octaves. Nothing is validated: a q of 0 or a frequency at half the sample rate yields a
 *  section whose output means nothing.
 *
 *  A fresh section passes its input through unchanged. A design replaces the coefficients and leaves the signal
 *  history alone; the history carries the signal from block to block. */
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
    void operate(const double* in, double* out, int len);

    double b0() const { return b0_; }
    double b1() const { return b1_; }
    double b2() const { return b2_; }
    double a0() const { return a0_; }
    double a1() const { return a1_; }
    double a2() const { return a2_; }

private:
    struct Corner;

    void setFeedback(const Corner& corner, double alpha);
    void setBandPass(const Corner& corner, double alpha);

    double b0_ = 1.0;
    double b1_ = 0.0;
    double b2_ = 0.0;
    double a0_ = 1.0;  // the designs divide by it beforehand
    double a1_ = 0.0;
    double a2_ = 0.0;
    double x2_ = 0.0;
    double x1_ = 0.0;
    double y2_ = 0.0;
    double y1_ = 0.0;
};

}  // namespace beatatlas
