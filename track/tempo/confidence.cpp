// SPDX-License-Identifier: MIT
#include "track/tempo/confidence.h"

#include <array>
#include <cstddef>

namespace beatatlas::track::inner {

namespace {

/** The share of right answers below a value. */
struct Class {
    double below;
    double confidence;
};

constexpr double kAny = 1e300;

// Counted over tracks of known metre by tools/styles/score_tempo.py; docs/accuracy.md has the
// counts. Values of classes with fewer than eight tracks are drawn toward the middle.
constexpr std::array<Class, 5> kPulse = {
    {{2.5, 0.10}, {4.0, 0.50}, {8.0, 0.85}, {16.0, 0.94}, {kAny, 0.99}}};
constexpr std::array<Class, 4> kLevel = {{{0.7, 0.70}, {0.85, 0.88}, {0.95, 0.96}, {kAny, 0.99}}};
constexpr std::array<Class, 3> kPhase = {{{0.85, 0.60}, {0.95, 0.88}, {kAny, 0.98}}};
constexpr std::array<Class, 4> kBars = {{{0.7, 0.45}, {0.85, 0.78}, {0.95, 0.86}, {kAny, 0.91}}};

template <std::size_t kCount>
double confidenceIn(const std::array<Class, kCount>& classes, double value) {
    for (const Class& entry : classes)
        if (value < entry.below) return entry.confidence;
    return classes.back().confidence;
}

}  // namespace

double confidenceOfPulse(double clarity) {
    return confidenceIn(kPulse, clarity);
}

double confidenceOfLevel(double share) {
    return confidenceIn(kLevel, share);
}

double confidenceOfPhase(double share) {
    return confidenceIn(kPhase, share);
}

double confidenceOfBars(double share) {
    return confidenceIn(kBars, share);
}

}  // namespace beatatlas::track::inner
