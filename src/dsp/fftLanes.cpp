// SPDX-License-Identifier: MIT
#include "dsp/fftLanes.h"

#include <cstddef>

#include "dsp/fftCore.h"
#include "dsp/vectorLanes.h"

namespace beatatlas::fft {

namespace {

// Three quarters of a period: the sines of half of it, and a quarter further on their cosines.
CArray<double> thinned(const double* sineTable, std::int64_t size, std::int64_t step) {
    const std::int64_t entries = (3 * size) / (4 * step);
    CArray<double> table = allocateOrNull<double>(entries);
    if (table == nullptr) return table;
    double* to = table.get();
    for (std::int64_t i = 0; i < entries; ++i) to[i] = sineTable[i * step];
    return table;
}

/** The butterflies of rotatePairs(), one per lane: near and far are the two values of each. */
template <class Vector>
BEATATLAS_LANES void rotate(const Vector& c, const Vector& s, double* nearRe, double* nearIm,
                            double* farRe, double* farIm) {
    Vector re;
    Vector im;
    Vector nextRe;
    Vector nextIm;
    loadLanes(re, nearRe);
    loadLanes(im, nearIm);
    loadLanes(nextRe, farRe);
    loadLanes(nextIm, farIm);
    const Vector dx = (c * nextRe) + (s * nextIm);
    const Vector dy = (c * nextIm) - (s * nextRe);
    storeLanes(re - dx, farRe);
    storeLanes(re + dx, nearRe);
    storeLanes(im - dy, farIm);
    storeLanes(im + dy, nearIm);
}

}  // namespace

bool LaneTransform::create(std::int64_t size, const double* sineTable, const int* bitReversal) {
    size_ = size;
    sineTable_ = sineTable;
    bitReversal_ = bitReversal;
    everySecond_ = thinned(sineTable, size, 2);
    everyFourth_ = thinned(sineTable, size, 4);
    return everySecond_ != nullptr && everyFourth_ != nullptr;
}

void LaneTransform::release() {
    size_ = 0;
    everySecond_.reset();
    everyFourth_.reset();
}

// Values that the plain form would reorder first: those it calls i and i + k lie m / 2k apart, and those that share an
// angle lie together, in groups that follow each other in bit-reversed order of the angle.
template <std::size_t kWidth>
struct LaneTransform::EarlyStages {
    using Vector = Lanes<double, kWidth>;
    static constexpr auto kStep = static_cast<std::int64_t>(kWidth);

    BEATATLAS_LANES static void run(const LaneTransform* t, double sign, double* re, double* im) {
        for (std::int64_t k = 1; k <= t->size_ / 16; k *= 2) {
            const std::int64_t distance = t->size_ / (2 * k);
            for (std::int64_t group = 0; group < k; ++group) {
                const std::int64_t angle = t->bitReversal_[group] / 2;
                Vector c;
                Vector s;
                fillLanes(c, t->sineTable_[angle + (t->size_ / 4)]);
                fillLanes(s, sign * t->sineTable_[angle]);
                const std::int64_t first = group * 2 * distance;
                for (std::int64_t i = first; i < first + distance; i += kStep)
                    rotate(c, s, re + i, im + i, re + i + distance, im + i + distance);
            }
        }
    }
};

template <std::size_t kWidth>
struct LaneTransform::LateStages {
    using Vector = Lanes<double, kWidth>;
    static constexpr auto kStep = static_cast<std::int64_t>(kWidth);

    BEATATLAS_LANES static void run(const LaneTransform* t, double sign, double* re, double* im) {
        for (std::int64_t k = t->size_ / 8; k < t->size_; k *= 2) {
            const Twiddles twiddles = t->twiddlesOf(k);
            for (std::int64_t first = 0; first < t->size_; first += 2 * k) {
                for (std::int64_t j = 0; j < k; j += kStep) {
                    Vector c;
                    Vector s;
                    loadLanes(c, twiddles.cosines + j);
                    loadLanes(s, twiddles.sines + j);
                    const std::int64_t i = first + j;
                    rotate(c, s * sign, re + i, im + i, re + i + k, im + i + k);
                }
            }
        }
    }
};

template <std::size_t kWidth>
struct LaneTransform::Scaling {
    static constexpr auto kStep = static_cast<std::int64_t>(kWidth);

    BEATATLAS_LANES static void run(double* values, std::int64_t n) {
        const double share = 1.0 / static_cast<double>(n);
        for (std::int64_t i = 0; i < n; i += kStep) {
            Lanes<double, kWidth> lanes;
            loadLanes(lanes, values + i);
            storeLanes(lanes * share, values + i);
        }
    }
};

/** Of the last three stages, whose angles are all, every second or every fourth of the sine table. */
LaneTransform::Twiddles LaneTransform::twiddlesOf(std::int64_t k) const {
    const double* table = sineTable_;
    if (k == size_ / 4) table = everySecond_.get();
    if (k == size_ / 8) table = everyFourth_.get();
    return {table, table + (k / 2)};
}

void LaneTransform::run(bool inverse, double* re, double* im) const {
    // Times -1 is the negative, whatever the value.
    const double sign = inverse ? -1.0 : 1.0;
    runInLanes<EarlyStages>(this, sign, re, im);
    reorder(size_, bitReversal_, re, im);
    runInLanes<LateStages>(this, sign, re, im);
}

void LaneTransform::divideByLength(double* re, double* im) const {
    runInLanes<Scaling>(re, size_);
    runInLanes<Scaling>(im, size_);
}

}  // namespace beatatlas::fft
