// SPDX-License-Identifier: MIT
#include "util/OctaveGate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dsp/lanes/vectorLanes.h"
#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr double kHalfOctaveDown = 0.70711356;
constexpr double kHalfOctaveUp = 1.4142;
constexpr std::size_t kFirstGated = 4;

/** The most sums that grow side by side: four vectors of the widest form. */
constexpr std::ptrdiff_t kLargestBlock = 64;

/** All bits for the octaves before an index, none from it on: read from kLargestBlock less than
 *  it. */
constexpr std::array<std::int32_t, 2 * kLargestBlock> kStairs = [] {
    std::array<std::int32_t, 2 * kLargestBlock> stairs{};
    for (std::size_t i = 0; i < kLargestBlock; ++i) stairs[i] = -1;
    return stairs;
}();

std::int32_t floorOfProduct(std::size_t bin, double factor) {
    return truncToInt32(static_cast<double>(bin) * factor);
}

/** Octaves of neighbouring bins, and their sums. */
struct Octaves {
    std::int32_t count;
    const std::int32_t* lo;
    const std::int32_t* hi;
    float* sums;
};

/** The sums of four vectors of neighbours at a time. Each takes its bins one by one from the lowest
 *  upward, as if it were alone; a bin is added to all sums at once, at the ends of the range only
 *  to those whose octave it is in. */
template <std::size_t kWidth>
struct SumOctaves {
    static constexpr std::ptrdiff_t kLanes = 2 * kWidth;
    static constexpr std::int32_t kBlock = 4 * kLanes;
    using Vector = Lanes<float, 2 * kWidth>;
    using Bits = Lanes<std::int32_t, 2 * kWidth>;

    BEATATLAS_LANES static void run(const Octaves* all, const float* magnitudes) {
        for (std::int32_t k = 0; k < all->count; k += kBlock) {
            const std::int32_t last = std::min(k + kBlock, all->count) - 1;
            const std::int32_t from = all->lo[k];
            const std::int32_t end = all->hi[last] + 1;
            // From common on, until some octave ends, a bin is in all of them.
            const std::int32_t common = std::min(all->lo[last], end);
            const std::int32_t commonEnd = std::max(all->hi[k] + 1, common);
            Vector sums[4] = {};
            addToSome(*all, k, magnitudes, from, common, sums);
            addToAll(magnitudes, common, commonEnd, sums);
            addToSome(*all, k, magnitudes, commonEnd, end, sums);
            for (std::ptrdiff_t v = 0; v < 4; ++v)
                storeLanes(sums[v], all->sums + k + (v * kLanes));
        }
    }

    BEATATLAS_LANES static void addToAll(const float* magnitudes, std::int32_t from,
                                         std::int32_t end, Vector* sums) {
        for (std::int32_t m = from; m < end; ++m)
            for (int v = 0; v < 4; ++v) sums[v] += magnitudes[m];
    }

    // Both ends of the octaves move up with k, so those that hold bin m lie together, from the
    // first that has not ended to the last that has begun.
    BEATATLAS_LANES static void addToSome(const Octaves& all, std::int32_t k,
                                          const float* magnitudes, std::int32_t from,
                                          std::int32_t end, Vector* sums) {
        const std::int32_t block = std::min(kBlock, all.count - k);
        std::int32_t begun = 0;
        std::int32_t ended = 0;
        for (std::int32_t m = from; m < end; ++m) {
            while (begun < block && all.lo[k + begun] <= m) ++begun;
            while (ended < block && all.hi[k + ended] < m) ++ended;
            addToThese(magnitudes[m], ended, begun, sums);
        }
    }

    /** The other octaves take a zero, which changes no sum that began at zero. */
    BEATATLAS_LANES static void addToThese(float magnitude, std::int32_t first, std::int32_t end,
                                           Vector* sums) {
        const auto bits = std::bit_cast<std::int32_t>(magnitude);
        for (std::ptrdiff_t v = 0; v < 4; ++v) {
            Bits hasBegun;
            Bits hasEnded;
            loadLanes(hasBegun, kStairs.data() + kLargestBlock - end + (v * kLanes));
            loadLanes(hasEnded, kStairs.data() + kLargestBlock - first + (v * kLanes));
            const Bits added = hasBegun & ~hasEnded & bits;
            Vector addend;
            std::memcpy(&addend, &added, sizeof addend);
            sums[v] += addend;
        }
    }
};

}  // namespace

OctaveGate::OctaveGate(int bins)
    : bins_(static_cast<std::size_t>(bins)), lo_(std::make_unique<std::int32_t[]>(bins_)),
      hi_(std::make_unique<std::int32_t[]>(bins_)), widthWeight_(std::make_unique<float[]>(bins_)),
      logPlace_(std::make_unique<float[]>(bins_)),
      sums_(std::make_unique<float[]>(bins_ + kLargestBlock)) {
    for (std::size_t k = 0; k < bins_; ++k) {
        lo_[k] = floorOfProduct(k, kHalfOctaveDown);
        hi_[k] = std::min(floorOfProduct(k, kHalfOctaveUp), bins - 1);
        const std::int32_t width = hi_[k] - lo_[k];
        widthWeight_[k] = width == 0 ? 1.0F : 1.0F / static_cast<float>(width);
        logPlace_[k] = static_cast<float>(std::log10(static_cast<double>(k + 1)));
    }
}

void OctaveGate::apply(float* magnitudes) {
    const Octaves octaves{static_cast<std::int32_t>(bins_), lo_.get(), hi_.get(), sums_.get()};
    runInLanes<SumOctaves>(&octaves, static_cast<const float*>(magnitudes));
    for (std::size_t k = kFirstGated; k < bins_; ++k) {
        // One bin more is summed than the weight divides by: the mean comes out high, above all at
        // the bottom, where octaves are a few bins wide. The gate is tuned to it.
        const float mean = sums_[k] * widthWeight_[k];
        if (magnitudes[k] < mean * logPlace_[k]) magnitudes[k] = 0.0F;
    }
}

}  // namespace beatatlas
