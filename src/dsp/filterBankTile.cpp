// SPDX-License-Identifier: MIT
#include "dsp/filterBankTile.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "dsp/lanes/transpose.h"

namespace beatatlas {

namespace {

constexpr std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

/** The part of a tile whose outputs are samples of the block, for a lane that stays `delay` steps behind. */
struct Readable {
    Readable(const FilterBankStretch& stretch, int delay)
        : firstStep(std::clamp(delay - stretch.first, 0, stretch.steps)),
          count(std::clamp(stretch.n + delay - stretch.first, firstStep, stretch.steps) -
                firstStep),
          firstSample(stretch.first + firstStep - delay) {}

    int firstStep;
    int count;
    int firstSample;
};

// A frame is one 32-bit lane, whichever channel lies in its upper half. Halving the sum toward zero gives the whole
// part of the mean.
template <std::size_t kWidth>
struct FillLevels {
    using Frames = Lanes<std::int32_t, kWidth>;
    using Values = Lanes<double, kWidth>;

    BEATATLAS_LANES static void run(const std::int16_t* stereo, double* mean, double* whole,
                                    int n) {
        constexpr int kStep = static_cast<int>(kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Frames frames;
            loadLanes(frames, stereo + 2 * at(i));
            const Frames sums = (frames >> 16) + ((frames << 16) >> 16);
            const Frames halves = (sums - (sums >> 31)) >> 1;
            storeLanes(__builtin_convertvector(sums, Values) * 0.5, mean + i);
            storeLanes(__builtin_convertvector(halves, Values), whole + i);
        }
        for (; i < n; ++i) {
            const std::int16_t* frame = stereo + 2 * at(i);
            const int sum = frame[0] + frame[1];
            mean[i] = static_cast<double>(sum) * 0.5;
            const int half = sum / 2;  // cut to a whole number, as the samples are
            whole[i] = static_cast<double>(half);
        }
    }
};

template <std::size_t kWidth>
struct Widen {
    using Narrow = Lanes<float, kWidth>;
    using Wide = Lanes<double, kWidth>;

    BEATATLAS_LANES static void run(const float* in, double* out, int n) {
        constexpr int kStep = static_cast<int>(kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Narrow values;
            loadLanes(values, in + i);
            storeLanes(__builtin_convertvector(values, Wide), out + i);
        }
        for (; i < n; ++i) out[i] = static_cast<double>(in[i]);
    }
};

template <std::size_t kWidth>
struct NarrowRectified {
    using Narrow = Lanes<float, kWidth>;
    using Bits = Lanes<std::uint32_t, kWidth>;
    using Wide = Lanes<double, kWidth>;

    BEATATLAS_LANES static void run(const double* in, float* out, int n) {
        constexpr int kStep = static_cast<int>(kWidth);
        int i = 0;
        for (; i + kStep <= n; i += kStep) {
            Wide values;
            loadLanes(values, in + i);
            const Narrow narrow = __builtin_convertvector(values, Narrow);
            Bits bits;
            loadLanes(bits, &narrow);
            storeLanes(bits & 0x7fffffffU, out + i);
        }
        for (; i < n; ++i) out[i] = std::fabs(static_cast<float>(in[i]));
    }
};

/** Rows of four bands become four signals, eight samples at a time: rows 0 to 3 in the lower lanes, 4 to 7 in the
 *  upper ones. */
template <std::size_t kWidth>
struct SplitBands {
    using Row = std::array<float, 4>;
    using Four = Lanes<float, 4>;
    using Eight = Lanes<float, 8>;
    using Bits = Lanes<std::uint32_t, 8>;

    BEATATLAS_LANES static void run(const Row* rows, float* const* out, int n) {
        int i = 0;
        for (; i + 8 <= n; i += 8) splitEight(rows + i, out, i);
        for (; i < n; ++i)
            for (std::size_t band = 0; band < 4; ++band) out[band][i] = std::fabs(rows[i][band]);
    }

    BEATATLAS_LANES static void splitEight(const Row* rows, float* const* out, int i) {
        Eight pairs[4];
        for (std::size_t k = 0; k < 4; ++k) {
            Four early;
            Four late;
            loadLanes(early, rows[k].data());
            loadLanes(late, rows[k + 4].data());
            pairs[k] = __builtin_shufflevector(early, late, 0, 1, 2, 3, 4, 5, 6, 7);
        }
        transposeLanes<4>(pairs);
        for (std::size_t band = 0; band < 4; ++band) store(pairs[band], out[band] + i);
    }

    BEATATLAS_LANES static void store(const Eight& band, float* out) {
        Bits bits;
        loadLanes(bits, &band);
        storeLanes(bits & 0x7fffffffU, out);
    }
};

}  // namespace

void fillTile(FilterBankTile& tile, const FilterBankStretch& stretch, const float* mono,
              const std::int16_t* stereo) {
    const int count = std::clamp(stretch.n - stretch.first, 0, stretch.steps);
    const int levels = stereo != nullptr ? count : 0;
    if (count > 0) runInLanes<Widen>(mono + stretch.first, tile.mono.data(), count);
    if (levels > 0)
        runInLanes<FillLevels>(stereo + 2 * at(stretch.first), tile.mean.data(), tile.whole.data(),
                               levels);
    std::fill(tile.mono.data() + count, tile.mono.data() + stretch.steps, 0.0);
    std::fill(tile.mean.data() + levels, tile.mean.data() + stretch.steps, 0.0);
    std::fill(tile.whole.data() + levels, tile.whole.data() + stretch.steps, 0.0);
}

void readBands(const FilterBankTile& tile, const FilterBankStretch& stretch,
               const std::array<float*, 4>& bands) {
    const Readable part(stretch, 1);
    FilterBankTile::Steps<float> unread;
    std::array<float*, 4> to;
    for (std::size_t band = 0; band < 4; ++band)
        to[band] = bands[band] != nullptr ? bands[band] + part.firstSample : unread.data();
    runInLanes<SplitBands>(tile.s.data() + part.firstStep, to.data(), part.count);
}

void readLongBand(const FilterBankTile& tile, const FilterBankStretch& stretch, float* band) {
    const Readable part(stretch, kFilterBankDepth);
    runInLanes<NarrowRectified>(tile.l.data() + part.firstStep, band + part.firstSample,
                                part.count);
}

void readLevels(const FilterBankTile::Steps<double>& values, const FilterBankStretch& stretch,
                int delay, double* levels) {
    const Readable part(stretch, delay);
    std::copy_n(values.data() + part.firstStep, part.count, levels + part.firstSample);
}

}  // namespace beatatlas
