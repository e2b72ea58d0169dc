// SPDX-License-Identifier: MIT
#include "dsp/LowPathFilter2D.h"

#include "dsp/ButterworthAngle.h"

namespace beatatlas {

void LowPathFilter2D::create(double freq, double sampleRate) {
    const ButterworthAngle corner(freq, sampleRate);
    section_.designLowPass(corner.cosine, corner.alpha);
}

}  // namespace beatatlas
