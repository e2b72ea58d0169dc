// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "dsp/RealSpectrum.h"
#include "dsp/lanes/transpose.h"
#include "dsp/lanes/vectorLanes.h"
#include "dsp/realSpectrumBins.h"

namespace beatatlas::fft {

namespace {

template <std::size_t kWidth, std::size_t... kLane>
BEATATLAS_LANES void reverse(Lanes<double, kWidth>& lanes, std::index_sequence<kLane...>) {
    lanes = __builtin_shufflevector(lanes, lanes, (kWidth - 1 - kLane)...);
}

constexpr std::array<double, 8> kSilentRow{};

}  // namespace

// The last three stages and the powers; lanes are bins, a few neighbours at a time. With n = 2
// earlyBins(), the bins that come of bin b are, stage by stage:
//
//     b             b            b
//                                4n - b
//                   2n - b       2n - b
//                                2n + b
//     n - b         n - b        n - b
//                                3n + b
//                   n + b        n + b
//                                3n - b
//
// A far bin takes its near one's sine for cosine and its cosine for sine: their angles add up to a
// quarter.
template <std::size_t kWidth>
struct RealSpectrum::LateStages {
    using Vector = Lanes<double, kWidth>;
    static constexpr auto kStep = static_cast<std::int64_t>(kWidth);

    struct Factor {
        BEATATLAS_LANES Factor(const double* sines, std::int64_t quarter) {
            loadLanes(s, sines);
            loadLanes(c, sines + quarter);
        }
        Vector c, s;
    };

    BEATATLAS_LANES static void run(const RealSpectrum* spectrum, const double* values,
                                    double* power) {
        const std::int64_t last = spectrum->earlyBins();
        for (std::int64_t bin = 0; bin <= last; bin += kStep)
            runBins(*spectrum, values, std::min(bin, last + 1 - kStep), power);
    }

    BEATATLAS_LANES static void runBins(const RealSpectrum& spectrum, const double* values,
                                        std::int64_t b, double* power) {
        const std::int64_t n = 2 * spectrum.earlyBins();
        const Factor first(spectrum.everyFourth_.get() + b, n / 2);
        const Factor second(spectrum.everySecond_.get() + b, n);
        const Factor third(spectrum.sineTable_ + b, 2 * n);
        const Factor fourth(spectrum.sineTable_ + n + b, 2 * n);
        Bins<kWidth> x[kLateSpectra];
        load(spectrum, values, b, x);
        for (int i = 0; i < 4; ++i) join<kWidth>(first.c, first.s, x[i], x[i + 4], x[i], x[i + 4]);
        for (int i = 0; i < 2; ++i) {
            join<kWidth>(second.c, second.s, x[i], x[i + 2], x[i], x[i + 2]);
            join<kWidth>(second.s, second.c, x[i + 4], x[i + 6], x[i + 4], x[i + 6]);
        }
        join<kWidth>(third.c, third.s, x[0], x[1], x[0], x[1]);
        join<kWidth>(third.s, third.c, x[2], x[3], x[2], x[3]);
        join<kWidth>(fourth.s, fourth.c, x[4], x[5], x[4], x[5]);
        join<kWidth>(fourth.c, fourth.s, x[6], x[7], x[6], x[7]);
        const double share = 1.0 / static_cast<double>(spectrum.size_);
        storeUpward(x[0], share, power + b);
        storeDownward(x[1], share, power + (4 * n) - b);
        storeDownward(x[2], share, power + (2 * n) - b);
        storeUpward(x[3], share, power + (2 * n) + b);
        storeDownward(x[4], share, power + n - b);
        storeUpward(x[5], share, power + (3 * n) + b);
        storeUpward(x[6], share, power + n + b);
        storeDownward(x[7], share, power + (3 * n) - b);
    }

    BEATATLAS_LANES static void load(const RealSpectrum& spectrum, const double* values,
                                     std::int64_t b, Bins<kWidth>* x) {
        for (std::size_t first = 0; first < kLateSpectra; first += kWidth) {
            Vector re[kWidth];
            Vector im[kWidth];
            for (std::size_t lane = 0; lane < kWidth; ++lane) {
                const Rows& rows = spectrum.lateRows_[static_cast<std::size_t>(b) + lane];
                loadLanes(re[lane], values + rows.re + first);
                loadLanes(im[lane],
                          (rows.im == kNoRow ? kSilentRow.data() : values + rows.im) + first);
            }
            transposeLanes<kWidth>(re);
            transposeLanes<kWidth>(im);
            for (std::size_t i = 0; i < kWidth; ++i) x[first + i] = {re[i], im[i]};
        }
    }

    /** The product with the inverse of the length, a power of two, is the quotient. */
    BEATATLAS_LANES static void storeUpward(const Bins<kWidth>& bins, double share, double* power) {
        const Vector re = bins.re * share;
        const Vector im = bins.im * share;
        storeLanes((re * re) + (im * im), power);
    }

    BEATATLAS_LANES static void storeDownward(const Bins<kWidth>& bins, double share,
                                              double* power) {
        Bins<kWidth> reversed = bins;
        reverse<kWidth>(reversed.re, std::make_index_sequence<kWidth>{});
        reverse<kWidth>(reversed.im, std::make_index_sequence<kWidth>{});
        storeUpward(reversed, share, power + 1 - kStep);
    }
};

void RealSpectrum::joinLate(const double* values, double* power) const {
    runInLanes<LateStages>(this, values, power);
}

}  // namespace beatatlas::fft
