// SPDX-License-Identifier: MIT
#include "track/key/keyConfidence.h"

#include <algorithm>
#include <array>

namespace beatatlas::track::inner {

namespace {

/** The share of right answers below a probability. */
struct Class {
    double below;
    double confidence;
};

// Counted by tools/styles/score_keys.py; see docs/accuracy.md.
constexpr std::array<Class, 4> kClasses = {{{0.8, 0.47}, {0.9, 0.82}, {0.96, 0.98}, {2.0, 0.99}}};

/** The share of right answers, among the likely ones, in pieces with less than this many seconds of
 *  music. */
struct Length {
    double below;
    double confidence;
};

// Counted in excerpts (score_keys.py --excerpt) of 1.5, 3, 6, 12 and 24 seconds.
constexpr std::array<Length, 5> kLengths = {
    {{3.0, 0.37}, {6.0, 0.43}, {12.0, 0.62}, {24.0, 0.80}, {48.0, 0.88}}};

// Below this lie noise and drums on their own. No track of known key had less, so there is nothing
// to count.
constexpr double kLeastCounted = 0.3;

double confidenceOfWhole(double probability) {
    if (probability < kLeastCounted) return probability;
    for (const Class& entry : kClasses)
        if (probability < entry.below) return entry.confidence;
    return kClasses.back().confidence;
}

}  // namespace

double confidenceOfKey(double probability, double seconds) {
    const double confidence = confidenceOfWhole(probability);
    for (const Length& entry : kLengths)
        if (seconds < entry.below) return std::min(confidence, entry.confidence);
    return confidence;
}

}  // namespace beatatlas::track::inner
