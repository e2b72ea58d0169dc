// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "dsp/lanes/vectorLanes.h"

/** Sample conversions inside kernels in lanes; those of sampleBlocks.h are kernels of their own. */
namespace beatatlas {

/** Half the sum of the two channels of a frame, exact. */
inline double monoOfFrame(const std::int16_t* frame) {
    return static_cast<double>(static_cast<int>(frame[0]) + static_cast<int>(frame[1])) * 0.5;
}

/** out[i] = monoOfFrame() of frame i, n of them. */
template <std::size_t kWidth>
struct MonoOfBlock {
    using Frames = Lanes<std::int32_t, kWidth>;
    using Values = Lanes<double, kWidth>;

    BEATATLAS_LANES static void run(const std::int16_t* stereo, double* out, int n) {
        constexpr int kStep = static_cast<int>(kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            // A frame is one 32-bit lane, whichever channel lies in its upper half.
            Frames frames;
            loadLanes(frames, stereo + (2 * static_cast<std::ptrdiff_t>(i)));
            Values sums;
            convertLanes<kWidth>((frames >> 16) + ((frames << 16) >> 16), sums);
            storeLanes(sums * 0.5, out + i);
        }
        for (; i < n; ++i) out[i] = monoOfFrame(stereo + (2 * static_cast<std::ptrdiff_t>(i)));
    }
};

/** out[i] = in[i] toward zero, the low 16 bits, n of them. Every value lies within 32 bits, unlike
 *  those that truncToInt16() takes. */
template <std::size_t kWidth>
struct LowHalvesOfBlock {
    BEATATLAS_LANES static void run(const double* in, std::int16_t* out, int n) {
        constexpr int kStep = static_cast<int>(kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Lanes<double, kWidth> values;
            loadLanes(values, in + i);
            const auto integers = __builtin_convertvector(values, Lanes<std::int32_t, kWidth>);
            storeLanes(__builtin_convertvector(integers, Lanes<std::int16_t, kWidth>), out + i);
        }
        for (; i < n; ++i) out[i] = static_cast<std::int16_t>(static_cast<std::int32_t>(in[i]));
    }
};

}  // namespace beatatlas
