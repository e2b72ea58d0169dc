// SPDX-License-Identifier: MIT
#pragma once

#include "dsp/SecondOrderSection.h"

namespace beatatlas {

/** Second-order Butterworth high-pass in double, the twin of LowPathFilter2D.
 *
 *  Life: create() once → operate() on consecutive blocks of one signal. There is no reset: whoever
 *  starts again builds a new filter. An object that was never designed copies its input. */
class HighPathFilter2D {
public:
    HighPathFilter2D() = default;
    HighPathFilter2D(const HighPathFilter2D&) = delete;
    HighPathFilter2D& operator=(const HighPathFilter2D&) = delete;
    virtual ~HighPathFilter2D() = default;

    /** Sets the coefficients and leaves the state as it is; nothing is checked.
     *
     *  @param freq        corner frequency in Hz, below half of sampleRate
     *  @param sampleRate  rate in Hz of the signal that will be filtered */
    void create(double freq, double sampleRate);

    /** Filters one block; `in` and `out` must be different arrays. Nothing happens for len ≤ 0. */
    void operate(const double* in, double* out, int len) { section_.operate(in, out, len); }

    SecondOrderSection& section() { return section_; }

private:
    SecondOrderSection section_;
};

}  // namespace beatatlas
