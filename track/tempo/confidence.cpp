// SPDX-License-Identifier: MIT
#include "track/tempo/confidence.h"

#include <array>
#include <cstddef>

namespace beatatlas::track::inner {

namespace {

/** Below a value, so many answers were right. */
struct Class {
    double below;
    double confidence;
};

constexpr double kAny = 1e300;

// Counted in classes, each of 2 to some 100 tracks; synthesised pieces of 48 styles, none of them fitted on its own
// style.
constexpr std::array<Class, 5> kPulse = {
    {{2.5, 0.10}, {4.0, 0.50}, {8.0, 0.85}, {16.0, 0.94}, {kAny, 0.98}}};
constexpr std::array<Class, 5> kLevel = {
    {{0.5, 0.35}, {0.7, 0.71}, {0.85, 0.88}, {0.95, 0.97}, {kAny, 0.99}}};
constexpr std::array<Class, 4> kPhase = {{{0.7, 0.40}, {0.85, 0.60}, {0.95, 0.93}, {kAny, 0.99}}};
constexpr std::array<Class, 5> kBars = {
    {{0.5, 0.50}, {0.7, 0.60}, {0.85, 0.77}, {0.95, 0.85}, {kAny, 0.91}}};

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
