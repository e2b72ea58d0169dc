// SPDX-License-Identifier: MIT
// The plain form of each kernel stands first and serves the frames that fill no vector; the lanes
// do the same for eight frames at a time.
#include "session/frameKernels.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <utility>

#include "dsp/lanes/vectorLanes.h"
#include "dsp/truncation.h"

namespace beatatlas {

namespace {

// The mean of both channels, with 16-bit full scale brought to ±1.0: a power of two, so the product
// is exact.
constexpr float kMonoScale = 1.0F / 65536.0F;

BEATATLAS_LANES void convertPlainly(const float* left, const float* right, int from, int to,
                                    float* mono, std::int16_t* stereo) {
    for (std::ptrdiff_t i = from; i < to; ++i) {
        mono[i] = (left[i] + right[i]) * kMonoScale;
        stereo[2 * i] = truncToInt16(left[i]);
        stereo[2 * i + 1] = truncToInt16(right[i]);
    }
}

BEATATLAS_LANES void addPlainly(const float* left, const float* right, int from, int to,
                                LevelTotals& totals) {
    for (int i = from; i < to; ++i) {
        const std::int32_t a = magnitude(left[i]);
        const std::int32_t b = magnitude(right[i]);
        totals.sum += a + b;
        totals.max = std::max({totals.max, a, b});
    }
}

constexpr int kLanes = 8;
// A frame adds 65,536 to a lane at the most.
constexpr int kMostVectorsPerSum = 4096;

using Floats = Lanes<float, kLanes>;
using Ints = Lanes<std::int32_t, kLanes>;
using Bits = Lanes<std::uint32_t, kLanes>;

/** truncToInt32() in each lane: what cannot be converted is exchanged for the number whose
 *  truncation is the answer. */
BEATATLAS_LANES void truncate(const Floats& samples, Ints& whole) {
    constexpr float kLowest = -2147483648.0F;
    constexpr float kTooHigh = 2147483648.0F;
    const Ints fits = (samples >= kLowest) & (samples < kTooHigh);
    const Floats safe = fits ? samples : Floats{} + kLowest;
    whole = __builtin_convertvector(safe, Ints);
}

BEATATLAS_LANES void magnitudes(const float* samples, Ints& lanes) {
    Floats loaded;
    loadLanes(loaded, samples);
    truncate(loaded, lanes);
    const Ints low =
        __builtin_convertvector(__builtin_convertvector(lanes, Bits) << 16, Ints) >> 16;
    lanes = low < 0 ? -low : low;
}

BEATATLAS_LANES void convertEight(const float* left, const float* right, float* mono,
                                  std::int16_t* stereo) {
    Floats l;
    Floats r;
    loadLanes(l, left);
    loadLanes(r, right);
    storeLanes(Floats((l + r) * kMonoScale), mono);
    Ints first;
    Ints second;
    truncate(l, first);
    truncate(r, second);
    if constexpr (std::endian::native == std::endian::big) std::swap(first, second);
    const Bits pairs = (__builtin_convertvector(first, Bits) & 0xffffU) |
                       (__builtin_convertvector(second, Bits) << 16);
    storeLanes(pairs, stereo);
}

// Both kernels are the same for every width: eight lanes of 32 bits gain nothing from registers
// wider than those of AVX2.

template <std::size_t>
struct ConvertFrames {
    BEATATLAS_LANES static void run(const float* left, const float* right, int n, float* mono,
                                    std::int16_t* stereo) {
        int i = 0;
        for (; i + kLanes <= n; i += kLanes)
            convertEight(left + i, right + i, mono + i,
                         stereo + 2 * static_cast<std::ptrdiff_t>(i));
        convertPlainly(left, right, i, n, mono, stereo);
    }
};

template <std::size_t>
struct AddLevels {
    BEATATLAS_LANES static void run(const float* left, const float* right, int n,
                                    LevelTotals* totals) {
        Ints max{};
        int i = 0;
        while (i + kLanes <= n) {
            Ints sum{};
            const int end = std::min(n, i + kMostVectorsPerSum * kLanes);
            for (; i + kLanes <= end; i += kLanes) {
                Ints a;
                Ints b;
                magnitudes(left + i, a);
                magnitudes(right + i, b);
                sum += a + b;
                max = a > max ? a : max;
                max = b > max ? b : max;
            }
            for (int lane = 0; lane < kLanes; ++lane) totals->sum += sum[lane];
        }
        for (int lane = 0; lane < kLanes; ++lane)
            totals->max = std::max<std::int32_t>(totals->max, max[lane]);
        addPlainly(left, right, i, n, *totals);
    }
};

}  // namespace

std::int32_t magnitude(float sample) {
    return std::abs(static_cast<std::int32_t>(truncToInt16(sample)));
}

LevelTotals levelTotals(const float* left, const float* right, int n) {
    LevelTotals totals;
    runInLanes<AddLevels, 4>(left, right, n, &totals);
    return totals;
}

void convertFrames(const float* left, const float* right, int n, float* mono,
                   std::int16_t* stereo) {
    runInLanes<ConvertFrames, 4>(left, right, n, mono, stereo);
}

}  // namespace beatatlas
