// SPDX-License-Identifier: MIT
#include "util/OctaveGate.h"

#include <algorithm>
#include <cmath>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

constexpr double kHalfOctaveDown = 0.70711356;
constexpr double kHalfOctaveUp = 1.4142;
constexpr std::size_t kFirstGated = 4;

std::size_t floorOfProduct(std::size_t bin, double factor) {
    return static_cast<std::size_t>(truncToInt32(static_cast<double>(bin) * factor));
}

}  // namespace

OctaveGate::OctaveGate(int bins)
    : bins_(static_cast<std::size_t>(bins)), lo_(std::make_unique<std::size_t[]>(bins_)),
      hi_(std::make_unique<std::size_t[]>(bins_)), widthWeight_(std::make_unique<float[]>(bins_)),
      logPlace_(std::make_unique<float[]>(bins_)),
      firstOwner_(std::make_unique<std::size_t[]>(bins_)),
      endOwner_(std::make_unique<std::size_t[]>(bins_)), sums_(std::make_unique<float[]>(bins_)) {
    placeOctaves();
    placeSums();
}

void OctaveGate::placeOctaves() {
    for (std::size_t k = 0; k < bins_; ++k) {
        lo_[k] = floorOfProduct(k, kHalfOctaveDown);
        hi_[k] = std::min(floorOfProduct(k, kHalfOctaveUp), bins_ - 1);
        const std::size_t width = hi_[k] - lo_[k];
        widthWeight_[k] = width == 0 ? 1.0F : 1.0F / static_cast<float>(width);
        logPlace_[k] = static_cast<float>(std::log10(static_cast<double>(k + 1)));
    }
}

// Both ends of the octaves move up with k, so the owners of a bin are neighbours.
void OctaveGate::placeSums() {
    std::size_t first = 0;
    std::size_t end = 0;
    for (std::size_t m = 0; m < bins_; ++m) {
        while (first < bins_ && hi_[first] < m) ++first;
        while (end < bins_ && lo_[end] <= m) ++end;
        firstOwner_[m] = first;
        endOwner_[m] = end;
    }
}

// Bin by bin into all sums it belongs to, rather than sum by sum: each sum still takes its bins from the lowest
// upward, and the sums of neighbours grow side by side.
void OctaveGate::sumOctaves(const float* magnitudes) {
    std::fill_n(sums_.get(), bins_, 0.0F);
    float* const sums = sums_.get();
    for (std::size_t m = 0; m < bins_; ++m) {
        const float magnitude = magnitudes[m];
        const std::size_t end = endOwner_[m];
        for (std::size_t k = firstOwner_[m]; k < end; ++k) sums[k] += magnitude;
    }
}

void OctaveGate::apply(float* magnitudes) {
    sumOctaves(magnitudes);
    for (std::size_t k = kFirstGated; k < bins_; ++k) {
        // One bin more is summed than the weight divides by: the mean comes out high, above all at the bottom,
        // where octaves are a few bins wide. The gate is tuned to it.
        const float mean = sums_[k] * widthWeight_[k];
        if (magnitudes[k] < mean * logPlace_[k]) magnitudes[k] = 0.0F;
    }
}

}  // namespace beatatlas
