// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>

#include "dsp/constants.h"

namespace beatatlas {

/** What a second-order Butterworth design needs to know about its corner. */
struct ButterworthAngle {
    double cosine;
    /** Sine over twice the quality factor 1/√2, written as a division by √2. */
    double alpha;

    ButterworthAngle(double freq, double sampleRate) {
        const double angle = freq * kShortTwoPi / sampleRate;
        cosine = std::cos(angle);
        alpha = std::sin(angle) / 1.414213562373095;
    }
};

}  // namespace beatatlas
