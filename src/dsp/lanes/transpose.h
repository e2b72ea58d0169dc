// SPDX-License-Identifier: MIT
#pragma once

#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

/** Four values of each of four signals, turned: to[i][s] = from[s][i]. */
BEATATLAS_LANES void turnFour(const float* const* from, float* const* to) {
    using Four = Lanes<float, 4>;
    Four a;
    Four b;
    Four c;
    Four d;
    loadLanes(a, from[0]);
    loadLanes(b, from[1]);
    loadLanes(c, from[2]);
    loadLanes(d, from[3]);
    const Four abLow = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const Four cdLow = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const Four abHigh = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Four cdHigh = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    storeLanes(Four(__builtin_shufflevector(abLow, cdLow, 0, 1, 4, 5)), to[0]);
    storeLanes(Four(__builtin_shufflevector(abLow, cdLow, 2, 3, 6, 7)), to[1]);
    storeLanes(Four(__builtin_shufflevector(abHigh, cdHigh, 0, 1, 4, 5)), to[2]);
    storeLanes(Four(__builtin_shufflevector(abHigh, cdHigh, 2, 3, 6, 7)), to[3]);
}

}  // namespace beatatlas
