// SPDX-License-Identifier: MIT
#include "catalogue/correction/sameSound.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "catalogue/blobCodecs.h"

namespace catalogue {

namespace {

using Wave = std::vector<beatatlas::track::WavePoint>;

constexpr double kMostSecondsApart = 0.1;
constexpr double kLeastCorrelation = 0.9;

double meanLevel(const Wave& wave, std::size_t points) {
    double sum = 0.0;
    for (std::size_t i = 0; i < points; ++i) sum += wave[i].level;
    return sum / static_cast<double>(points);
}

/** Pearson's correlation of the first points; 1 where neither changes at all, 0 where one does. */
double correlation(const Wave& one, const Wave& other) {
    const std::size_t points = std::min(one.size(), other.size());
    const double oneMean = meanLevel(one, points);
    const double otherMean = meanLevel(other, points);
    double both = 0.0;
    double oneSquares = 0.0;
    double otherSquares = 0.0;
    for (std::size_t i = 0; i < points; ++i) {
        const double a = one[i].level - oneMean;
        const double b = other[i].level - otherMean;
        both += a * b;
        oneSquares += a * a;
        otherSquares += b * b;
    }
    if (oneSquares == 0.0 && otherSquares == 0.0) return 1.0;
    if (oneSquares == 0.0 || otherSquares == 0.0) return 0.0;
    return both / std::sqrt(oneSquares * otherSquares);
}

}  // namespace

bool isSameSound(const Analysed& one, const Analysed& other) {
    if (!(std::abs(one.track.seconds - other.track.seconds) <= kMostSecondsApart)) return false;
    const Wave oneWave = decodeWave(one.result.zoomWave);
    const Wave otherWave = decodeWave(other.result.zoomWave);
    if (oneWave.empty() || otherWave.empty()) return false;
    return correlation(oneWave, otherWave) >= kLeastCorrelation;
}

}  // namespace catalogue
