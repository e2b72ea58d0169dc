// SPDX-License-Identifier: MIT
#include "dsp/HighPathFilter2D.h"

#include "dsp/ButterworthAngle.h"

namespace beatatlas {

void HighPathFilter2D::create(double freq, double sampleRate) {
    const ButterworthAngle corner(freq, sampleRate);
    section_.designHighPass(corner.cosine, corner.alpha);
}

}  // namespace beatatlas
