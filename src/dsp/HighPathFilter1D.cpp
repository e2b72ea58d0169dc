// SPDX-License-Identifier: MIT
#include "dsp/HighPathFilter1D.h"

#include "dsp/constants.h"

namespace beatatlas {

void HighPathFilter1D::create(double freq, double sampleRate) {
    const double angle = freq * kShortTwoPi / sampleRate;
    b0_ = 2.0 / (angle + 2.0);
    b1_ = -b0_;
    a0_ = 1.0;
    a1_ = (angle - 2.0) / (angle + 2.0);
}

void HighPathFilter1D::operate(const double* in, double* out, int len) {
    double x1 = x1_;
    double y1 = y1_;
    for (int n = 0; n < len; ++n) {
        // The older input first: the order of the sum is part of the result.
        const double y = (b1_ * x1 + b0_ * in[n]) - a1_ * y1;
        x1 = in[n];
        y1 = y;
        out[n] = y;
    }
    x1_ = x1;
    y1_ = y1;
}

}  // namespace beatatlas
