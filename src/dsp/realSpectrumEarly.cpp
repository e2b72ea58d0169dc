// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>

#include "dsp/RealSpectrum.h"
#include "dsp/lanes/vectorLanes.h"
#include "dsp/realSpectrumBins.h"

namespace beatatlas::fft {

// The first stage, then two stages at a time, in which four spectra of n bins each become one;
// lanes are spectra.
template <std::size_t kWidth>
struct RealSpectrum::EarlyStages {
    using Vector = Lanes<double, kWidth>;
    static constexpr auto kStep = static_cast<std::int64_t>(kWidth);

    BEATATLAS_LANES static void run(const RealSpectrum* spectrum, double* values) {
        joinValues(values, spectrum->size_ / 2);
        for (std::int64_t n = 2; n < spectrum->earlyBins(); n *= 4) {
            const std::int64_t part = spectrum->size_ / (4 * n);
            joinFirst(values, part);
            joinMiddle(spectrum->factor(n / 2, part), values + (4 * part), part);
            for (std::int64_t i = 0; i < (n / 2) - 1; ++i) {
                const Rows& rows = spectrum->rows_[static_cast<std::size_t>(i)];
                joinRows(spectrum->factor(rows.bin, 2 * part), spectrum->factor(rows.bin, part),
                         values + rows.re, values + rows.im, part);
            }
        }
    }

    /** Spectra of one bin, which are the values. */
    BEATATLAS_LANES static void joinValues(double* values, std::int64_t part) {
        for (std::int64_t i = 0; i < part; i += kStep) {
            Vector even;
            Vector odd;
            loadLanes(even, values + i);
            loadLanes(odd, values + part + i);
            storeLanes(even + odd, values + i);
            storeLanes(even - odd, values + part + i);
        }
    }

    /** Bin 0: real, and its factors are 1; at the second stage that of bin n is -i. */
    BEATATLAS_LANES static void joinFirst(double* row, std::int64_t part) {
        for (std::int64_t i = 0; i < part; i += kStep) {
            Bins<kWidth> even;
            Bins<kWidth> odd;
            even.load(row + i, row + part + i);
            odd.load(row + (2 * part) + i, row + (3 * part) + i);
            const Vector first = even.re + odd.re;
            const Vector second = even.im + odd.im;
            storeLanes(first + second, row + i);
            storeLanes(first - second, row + part + i);
            storeLanes(even.re - odd.re, row + (2 * part) + i);
            storeLanes(odd.im - even.im, row + (3 * part) + i);
        }
    }

    /** Bin n / 2: real, and its factor is -i at the first stage. */
    BEATATLAS_LANES static void joinMiddle(const Factor& factor, double* row, std::int64_t part) {
        Vector c;
        Vector s;
        fillLanes(c, factor.cosine);
        fillLanes(s, factor.sine);
        for (std::int64_t i = 0; i < part; i += kStep) {
            Bins<kWidth> even;
            Bins<kWidth> odd;
            even.load(row + i, row + (2 * part) + i);
            odd.load(row + part + i, row + (3 * part) + i);
            even.im = -even.im;
            odd.im = -odd.im;
            join<kWidth>(c, s, even, odd, even, odd);
            even.store(row + i, row + (2 * part) + i);
            odd.store(row + part + i, row + (3 * part) + i);
        }
    }

    BEATATLAS_LANES static void joinRows(const Factor& first, const Factor& second, double* re,
                                         double* im, std::int64_t part) {
        Vector c1, s1, c2, s2;
        fillLanes(c1, first.cosine);
        fillLanes(s1, first.sine);
        fillLanes(c2, second.cosine);
        fillLanes(s2, second.sine);
        for (std::int64_t i = 0; i < part; i += kStep) {
            Bins<kWidth> x0, x1, x2, x3;
            x0.load(re + i, im + i);
            x1.load(re + part + i, im + part + i);
            x2.load(re + (2 * part) + i, im + (2 * part) + i);
            x3.load(re + (3 * part) + i, im + (3 * part) + i);
            join<kWidth>(c1, s1, x0, x2, x0, x2);
            join<kWidth>(c1, s1, x1, x3, x1, x3);
            join<kWidth>(c2, s2, x0, x1, x0, x1);
            join<kWidth>(s2, c2, x2, x3, x2, x3);
            x0.store(re + i, im + i);
            x1.store(re + part + i, im + part + i);
            x2.store(re + (2 * part) + i, im + (2 * part) + i);
            x3.store(re + (3 * part) + i, im + (3 * part) + i);
        }
    }
};

void RealSpectrum::joinEarly(double* values) const {
    runInLanes<EarlyStages>(this, values);
}

}  // namespace beatatlas::fft
