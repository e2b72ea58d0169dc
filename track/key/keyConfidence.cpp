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
constexpr std::array<Class, 5> kClasses = {
    {{0.5, 0.67}, {0.65, 0.73}, {0.8, 0.79}, {0.96, 0.92}, {2.0, 0.99}}};

}  // namespace

double confidenceOfKey(double probability) {
    for (const Class& entry : kClasses)
        if (probability < entry.below) return entry.confidence;
    return kClasses.back().confidence;
}

}  // namespace beatatlas::track::inner
