// SPDX-License-Identifier: MIT
#include "view/scaleBand.h"

#include <cstddef>

#include "dsp/lanes/vectorLanes.h"
#include "view/fullScale.h"

namespace beatatlas {

namespace {

BEATATLAS_LANES float scalePlainly(const float* band, float* scaled, int from, int to,
                                   float loudest) {
    for (int i = from; i < to; ++i) {
        scaled[i] = band[i] * kFullScale;
        if (scaled[i] > loudest) loudest = scaled[i];
    }
    return loudest;
}

/** scalePlainly() in lanes, the same for every width; which lane meets the loudest sample makes no
 *  difference. */
template <std::size_t>
struct ScaleBand {
    static constexpr int kLanes = 8;
    using Floats = Lanes<float, kLanes>;

    BEATATLAS_LANES static void run(const float* band, float* scaled, int n, float* loudest) {
        Floats largest{};
        int i = 0;
        for (; i + kLanes <= n; i += kLanes) {
            Floats samples;
            loadLanes(samples, band + i);
            samples *= kFullScale;
            storeLanes(samples, scaled + i);
            largest = samples > largest ? samples : largest;
        }
        float most = 0.0F;
        for (int lane = 0; lane < kLanes; ++lane)
            if (largest[lane] > most) most = largest[lane];
        *loudest = scalePlainly(band, scaled, i, n, most);
    }
};

}  // namespace

float scaleBand(const float* band, float* scaled, int n) {
    float loudest = 0.0F;
    runInLanes<ScaleBand, 4>(band, scaled, n, &loudest);
    return loudest;
}

}  // namespace beatatlas
