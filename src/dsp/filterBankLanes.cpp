// SPDX-License-Identifier: MIT
#include "dsp/filterBankLanes.h"

#include <cmath>
#include <cstring>

#include "dsp/VectorForm.h"

namespace beatatlas {

namespace {

using FloatLanes = float __attribute__((vector_size(16)));
using IntLanes = std::int32_t __attribute__((vector_size(16)));
using LongLanes = std::int64_t __attribute__((vector_size(32)));

constexpr int kGroup = 4;
// Steps from the first section's taking a sample to the last one's.
constexpr int kDepth = 3;

/** The operations of IirFilter::operate, in its order. */
BEATATLAS_LANES void outputOf(const SectionLanes& s, const DoubleLanes& x, DoubleLanes& y) {
    y = ((((s.b0 * x) + (s.b1 * s.x1)) + (s.b2 * s.x2)) - (s.a1 * s.y1)) - (s.a2 * s.y2);
}

BEATATLAS_LANES void take(SectionLanes& s, const DoubleLanes& x) {
    DoubleLanes y;
    outputOf(s, x, y);
    s.x2 = s.x1;
    s.x1 = x;
    s.y2 = s.y1;
    s.y1 = y;
}

BEATATLAS_LANES void choose(const LongLanes& active, const DoubleLanes& yes, DoubleLanes& value) {
    value = active ? yes : value;
}

/** As take(), in the active lanes only; the others rest. */
BEATATLAS_LANES void takeWhere(const LongLanes& active, SectionLanes& s, const DoubleLanes& x) {
    SectionLanes after = s;
    take(after, x);
    choose(active, after.x1, s.x1);
    choose(active, after.x2, s.x2);
    choose(active, after.y1, s.y1);
    choose(active, after.y2, s.y2);
}

/** What the three vectors take in a step: the sample, and what other sections gave in the step before. */
struct Inputs {
    BEATATLAS_LANES Inputs(const FilterBankLanes& lanes, float sample) {
        const auto x = static_cast<double>(sample);
        first = DoubleLanes{x, x, x, x};
        second = lanes.first.y1;
        const DoubleLanes firstAndLb = __builtin_shufflevector(first, lanes.second.y1, 0, 7, 0, 7);
        third = __builtin_shufflevector(firstAndLb, lanes.third.y1, 0, 1, 4, 5);
    }

    DoubleLanes first, second, third;
};

BEATATLAS_LANES void step(FilterBankLanes& lanes, float sample) {
    const Inputs in(lanes, sample);
    take(lanes.third, in.third);
    take(lanes.second, in.second);
    take(lanes.first, in.first);
}

BEATATLAS_LANES void storeRectified(const FloatLanes& row, float* out) {
    IntLanes bits;
    std::memcpy(&bits, &row, sizeof bits);
    bits &= 0x7fffffff;
    std::memcpy(out, &bits, sizeof bits);
}

/** Four steps in which every lane is active, the first of them step t. */
BEATATLAS_LANES void stepGroup(FilterBankLanes& lanes, const float* in,
                               const FilterBankSinks& sinks, std::ptrdiff_t t) {
    FloatLanes ends[kGroup];   // of S0 to S2, and a section in the middle of L
    FloatLanes tails[kGroup];  // of S3 and L, in the upper half
    for (int k = 0; k < kGroup; ++k) {
        step(lanes, in[t + k]);
        ends[k] = __builtin_convertvector(lanes.second.y1, FloatLanes);
        tails[k] = __builtin_convertvector(lanes.third.y1, FloatLanes);
    }
    const FloatLanes s01a = __builtin_shufflevector(ends[0], ends[1], 0, 4, 1, 5);
    const FloatLanes s01b = __builtin_shufflevector(ends[2], ends[3], 0, 4, 1, 5);
    const FloatLanes s2a = __builtin_shufflevector(ends[0], ends[1], 2, 6, 3, 7);
    const FloatLanes s2b = __builtin_shufflevector(ends[2], ends[3], 2, 6, 3, 7);
    const FloatLanes s3La = __builtin_shufflevector(tails[0], tails[1], 2, 6, 3, 7);
    const FloatLanes s3Lb = __builtin_shufflevector(tails[2], tails[3], 2, 6, 3, 7);
    storeRectified(__builtin_shufflevector(s01a, s01b, 0, 1, 4, 5), sinks[0].at(t - 1));
    storeRectified(__builtin_shufflevector(s01a, s01b, 2, 3, 6, 7), sinks[1].at(t - 1));
    storeRectified(__builtin_shufflevector(s2a, s2b, 0, 1, 4, 5), sinks[2].at(t - 1));
    storeRectified(__builtin_shufflevector(s3La, s3Lb, 0, 1, 4, 5), sinks[3].at(t - 1));
    storeRectified(__builtin_shufflevector(s3La, s3Lb, 2, 3, 6, 7), sinks[4].at(t - kDepth));
}

/** One step near the border of a block of n samples. */
BEATATLAS_LANES void stepAtBorder(FilterBankLanes& lanes, const float* in,
                                  const FilterBankSinks& sinks, std::ptrdiff_t t,
                                  std::ptrdiff_t n) {
    const auto has = [t, n](std::ptrdiff_t delay) {
        return static_cast<std::int64_t>(-(t >= delay && t - delay < n));
    };
    const std::int64_t now = has(0);
    const std::int64_t oneBack = has(1);
    const Inputs x(lanes, t < n ? in[t] : 0.0F);
    takeWhere(LongLanes{now, has(2), oneBack, has(kDepth)}, lanes.third, x.third);
    takeWhere(LongLanes{oneBack, oneBack, oneBack, oneBack}, lanes.second, x.second);
    takeWhere(LongLanes{now, now, now, now}, lanes.first, x.first);
    if (oneBack != 0) {
        for (int s = 0; s < 3; ++s)
            *sinks[static_cast<std::size_t>(s)].at(t - 1) =
                std::fabs(static_cast<float>(lanes.second.y1[s]));
        *sinks[3].at(t - 1) = std::fabs(static_cast<float>(lanes.third.y1[2]));
    }
    if (has(kDepth) != 0)
        *sinks[4].at(t - kDepth) = std::fabs(static_cast<float>(lanes.third.y1[3]));
}

BEATATLAS_LANES void run(FilterBankLanes& state, const float* in, const FilterBankSinks& sinks,
                         int count) {
    FilterBankLanes lanes = state;
    const std::ptrdiff_t n = count;
    std::ptrdiff_t t = 0;
    for (; t < kDepth; ++t) stepAtBorder(lanes, in, sinks, t, n);
    for (; t + kGroup <= n; t += kGroup) stepGroup(lanes, in, sinks, t);
    for (; t < n + kDepth; ++t) stepAtBorder(lanes, in, sinks, t, n);
    state = lanes;
}

void runBaseline(FilterBankLanes& lanes, const float* in, const FilterBankSinks& sinks, int n) {
    run(lanes, in, sinks, n);
}

#if BEATATLAS_WIDE_FORMS
BEATATLAS_AVX2 void runAvx2(FilterBankLanes& lanes, const float* in, const FilterBankSinks& sinks,
                            int n) {
    run(lanes, in, sinks, n);
}

BEATATLAS_AVX512 void runAvx512(FilterBankLanes& lanes, const float* in,
                                const FilterBankSinks& sinks, int n) {
    run(lanes, in, sinks, n);
}
#endif

}  // namespace

FilterBankKernel filterBankKernel() {
#if BEATATLAS_WIDE_FORMS
    const VectorForm form = vectorForm();
    if (form == VectorForm::avx512) return runAvx512;
    if (form == VectorForm::avx2) return runAvx2;
#endif
    return runBaseline;
}

}  // namespace beatatlas
