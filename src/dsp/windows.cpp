// SPDX-License-Identifier: MIT
#include <cmath>

#include "beatatlas/dsp.h"
#include "dsp/constants.h"

void hanning(int n, float* w) {
    const double period = static_cast<double>(n) + 1.0;
    for (int i = 0; i < n; ++i) {
        const double k = static_cast<double>(i) + 1.0;
        const double angle = ((2.0 * beatatlas::kPi) * k) / period;
        w[i] = static_cast<float>(0.5 - (0.5 * std::cos(angle)));
    }
}
