// SPDX-License-Identifier: MIT
#include "track/key/keyConfidence.h"

#include <array>

namespace beatatlas::track::inner {

namespace {

/** Below a probability, so many answers were right. */
struct Class {
    double below;
    double confidence;
};

// Counted by tools/styles/score_keys.py; see docs/accuracy.md.
constexpr std::array<Class, 4> kClasses = {{{0.8, 0.47}, {0.9, 0.82}, {0.96, 0.98}, {2.0, 0.99}}};
// Noise and drums alone: no track of known key had less, so there is nothing to count.
constexpr double kLeastCounted = 0.3;

}  // namespace

double confidenceOfKey(double probability) {
    if (probability < kLeastCounted) return probability;
    for (const Class& entry : kClasses)
        if (probability < entry.below) return entry.confidence;
    return kClasses.back().confidence;
}

}  // namespace beatatlas::track::inner
