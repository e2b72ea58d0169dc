// SPDX-License-Identifier: MIT
#include "view/scaleBand.h"

#include <cstring>

#include "dsp/lanes/VectorForm.h"
#include "view/fullScale.h"

namespace beatatlas {

namespace {

constexpr int kLanes = 8;

using Floats = float __attribute__((vector_size(4 * kLanes)));

float scalePlainly(const float* band, float* scaled, int from, int to, float loudest) {
    for (int i = from; i < to; ++i) {
        scaled[i] = band[i] * kFullScale;
        if (scaled[i] > loudest) loudest = scaled[i];
    }
    return loudest;
}

/** scalePlainly() in lanes; which lane meets the loudest sample makes no difference. */
BEATATLAS_LANES float scaleInLanes(const float* band, float* scaled, int n) {
    Floats loudest{};
    int i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        Floats samples;
        std::memcpy(&samples, band + i, sizeof samples);
        samples *= kFullScale;
        std::memcpy(scaled + i, &samples, sizeof samples);
        loudest = samples > loudest ? samples : loudest;
    }
    float most = 0.0F;
    for (int lane = 0; lane < kLanes; ++lane)
        if (loudest[lane] > most) most = loudest[lane];
    return scalePlainly(band, scaled, i, n, most);
}

float scaleBaseline(const float* band, float* scaled, int n) {
    return scaleInLanes(band, scaled, n);
}

#if BEATATLAS_WIDE_FORMS
BEATATLAS_AVX2 float scaleAvx2(const float* band, float* scaled, int n) {
    return scaleInLanes(band, scaled, n);
}
#endif

}  // namespace

float scaleBand(const float* band, float* scaled, int n) {
#if BEATATLAS_WIDE_FORMS
    if (vectorForm() >= VectorForm::avx2) return scaleAvx2(band, scaled, n);
#endif
    return scaleBaseline(band, scaled, n);
}

}  // namespace beatatlas
