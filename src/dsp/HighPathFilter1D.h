// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** First-order high-pass in double that takes the slow drift out of a level envelope.
 *
 *  The analogue RC high-pass by the bilinear transform, without prewarping: the corner is exact
 *  only far below the sample rate, which is where it is used.
 *
 *  Life: create() once → operate() on consecutive blocks of one signal. There is no reset: whoever
 *  starts again builds a new filter. An object that was never designed copies its input. */
class HighPathFilter1D {
public:
    HighPathFilter1D() = default;
    HighPathFilter1D(const HighPathFilter1D&) = delete;
    HighPathFilter1D& operator=(const HighPathFilter1D&) = delete;
    virtual ~HighPathFilter1D() = default;

    /** Sets the coefficients and leaves the state as it is; nothing is checked.
     *
     *  @param freq        corner frequency in Hz; 0 gives a filter that reproduces its input
     *  @param sampleRate  rate in Hz of the signal that will be filtered */
    void create(double freq, double sampleRate);

    /** Filters one block; `in` and `out` must be different arrays. Nothing happens for len ≤ 0. */
    void operate(const double* in, double* out, int len);

    double b0() const { return b0_; }
    double b1() const { return b1_; }
    double a1() const { return a1_; }

private:
    double b0_ = 1.0;
    double b1_ = 0.0;
    // Divided out of the others by the design.
    double a0_ = 1.0;
    double a1_ = 0.0;
    double x1_ = 0.0;
    double y1_ = 0.0;
};

}  // namespace beatatlas
