// SPDX-License-Identifier: MIT
#include "dsp/RealSpectrum.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "dsp/vectorLanes.h"

namespace beatatlas::fft {

namespace {

constexpr std::int64_t kNoRow = -1;  // of imaginary parts: the bin is real

// Half a period of sines, and a quarter further on their cosines.
CArray<double> thinned(const double* sineTable, std::int64_t size, std::int64_t step) {
    const std::int64_t entries = (3 * size) / (4 * step);
    CArray<double> table = allocateOrNull<double>(entries);
    if (table == nullptr) return table;
    double* to = table.get();
    for (std::int64_t i = 0; i < entries; ++i) to[i] = sineTable[i * step];
    return table;
}

}  // namespace

bool RealSpectrum::create(std::int64_t size, const double* sineTable) {
    size_ = size;
    sineTable_ = sineTable;
    rows_ = allocateOrNull<Rows>(earlyBins());
    lateRows_ = allocateOrNull<Rows>(earlyBins() + 1);
    everySecond_ = thinned(sineTable, size, 2);
    everyFourth_ = thinned(sineTable, size, 4);
    if (rows_ == nullptr || lateRows_ == nullptr || everySecond_ == nullptr ||
        everyFourth_ == nullptr) {
        release();
        return false;
    }
    layRows();
    return true;
}

void RealSpectrum::release() {
    size_ = 0;
    rows_.reset();
    lateRows_.reset();
    everySecond_.reset();
    everyFourth_.reset();
}

// Joining spectra of n bins halves every row. The first half takes the bin on; the second half becomes bin n - b of the
// longer spectrum. Bin n / 2, real before, becomes complex: its second half is the new imaginary part.
void RealSpectrum::layRows() {
    Rows* rows = rows_.get();
    std::int64_t count = 0;
    for (std::int64_t n = 2; n <= earlyBins(); n *= 2) {
        const std::int64_t half = size_ / (2 * n);
        const std::int64_t before = count;
        rows[count++] = {n / 2, 2 * half, 3 * half};
        for (std::int64_t i = 0; i < before; ++i)
            rows[count++] = {n - rows[i].bin, rows[i].re + half, rows[i].im + half};
    }
    Rows* late = lateRows_.get();
    for (std::int64_t i = 0; i < count; ++i) late[rows[i].bin] = rows[i];
    late[0] = {0, 0, kNoRow};
    late[earlyBins()] = {earlyBins(), kLateSpectra, kNoRow};
}

namespace {

template <std::size_t kWidth>
struct Bins {
    BEATATLAS_LANES void load(const double* reFrom, const double* imFrom) {
        loadLanes(re, reFrom);
        loadLanes(im, imFrom);
    }
    BEATATLAS_LANES void store(double* reTo, double* imTo) const {
        storeLanes(re, reTo);
        storeLanes(im, imTo);
    }

    Lanes<double, kWidth> re;
    Lanes<double, kWidth> im;
};

/** Joins bins b of two spectra of n bins, of the even and of the odd values: near is bin b of the joint spectrum, far
 *  is bin n - b. The operations of rotatePairs(), with the conjugate taken of what it calls i + k. */
template <std::size_t kWidth>
BEATATLAS_LANES void join(const Lanes<double, kWidth>& c, const Lanes<double, kWidth>& s,
                          const Bins<kWidth>& even, const Bins<kWidth>& odd, Bins<kWidth>& near,
                          Bins<kWidth>& far) {
    const Lanes<double, kWidth> dx = (c * odd.re) + (s * odd.im);
    const Lanes<double, kWidth> dy = (c * odd.im) - (s * odd.re);
    const Bins<kWidth> start = even;
    far.re = start.re - dx;
    far.im = dy - start.im;
    near.re = start.re + dx;
    near.im = start.im + dy;
}

}  // namespace

// The first stage, then two stages at a time, in which four spectra of n bins each become one; lanes are spectra.
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

namespace {

/** Lanes of both vectors in turn, from lane kFrom of each. */
template <std::size_t kWidth, std::size_t kFrom, std::size_t... kLane>
BEATATLAS_LANES void zip(const Lanes<double, kWidth>& a, const Lanes<double, kWidth>& b,
                         Lanes<double, kWidth>& zipped, std::index_sequence<kLane...>) {
    zipped = __builtin_shufflevector(a, b, (kFrom + (kLane / 2) + ((kLane % 2) * kWidth))...);
}

/** Turns a square: lane l of vector v goes to lane v of vector l. */
template <std::size_t kWidth>
BEATATLAS_LANES void turn(Lanes<double, kWidth>* square) {
    constexpr auto kLanes = std::make_index_sequence<kWidth>{};
    constexpr std::size_t kHalf = kWidth / 2;
    for (std::size_t round = 1; round < kWidth; round *= 2) {
        Lanes<double, kWidth> zipped[kWidth];
        for (std::size_t v = 0; v < kHalf; ++v) {
            zip<kWidth, 0>(square[v], square[kHalf + v], zipped[2 * v], kLanes);
            zip<kWidth, kHalf>(square[v], square[kHalf + v], zipped[(2 * v) + 1], kLanes);
        }
        for (std::size_t v = 0; v < kWidth; ++v) square[v] = zipped[v];
    }
}

template <std::size_t kWidth, std::size_t... kLane>
BEATATLAS_LANES void reverse(Lanes<double, kWidth>& lanes, std::index_sequence<kLane...>) {
    lanes = __builtin_shufflevector(lanes, lanes, (kWidth - 1 - kLane)...);
}

constexpr std::array<double, 8> kSilentRow{};

}  // namespace

// The last three stages and the powers; lanes are bins, a few neighbours at a time. With n = 2 earlyBins(), the bins
// that come of bin b are, stage by stage:
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
// A far bin takes its near one's sine for cosine and its cosine for sine: their angles add up to a quarter.
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
                loadLanes(im[lane], (rows.im < 0 ? kSilentRow.data() : values + rows.im) + first);
            }
            turn<kWidth>(re);
            turn<kWidth>(im);
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

void RealSpectrum::run(double* values, double* power) const {
    runInLanes<EarlyStages>(this, values);
    runInLanes<LateStages>(this, static_cast<const double*>(values), power);
}

}  // namespace beatatlas::fft
