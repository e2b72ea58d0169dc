// SPDX-License-Identifier: MIT
#include "track/key/keyTemplates.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace beatatlas::track::inner {

namespace {

constexpr std::size_t kTones = std::tuple_size_v<ChromaSum>;

// From the tonic upward.
constexpr ChromaSum kMajor = {.238, .006, .111, .006, .137, .094,
                              .016, .214, .009, .080, .008, .081};
constexpr ChromaSum kMinor = {.220, .006, .104, .123, .019, .103,
                              .012, .214, .062, .022, .061, .052};
constexpr ChromaSum kMajorTriad = {1, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0};
constexpr ChromaSum kMinorTriad = {1, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0};

// The mean chroma of music deviates from a flat one by at least 0.07, that of a few seconds of
// noise by 0.01.
constexpr double kLeastLength = 0.05;

/** Subtracts the mean and normalises the rest to a length of 1. */
ChromaSum standingOut(const ChromaSum& chroma) {
    double mean = 0.0;
    for (const double tone : chroma) mean += tone / kTones;
    ChromaSum unit{};
    double squares = 0.0;
    for (std::size_t i = 0; i < kTones; ++i) {
        unit[i] = chroma[i] - mean;
        squares += unit[i] * unit[i];
    }
    const double length = std::max(std::sqrt(squares), kLeastLength);
    for (double& tone : unit) tone /= length;
    return unit;
}

KeyTemplates onEveryTonic(const ChromaSum& major, const ChromaSum& minor) {
    KeyTemplates templates{};
    for (std::size_t tonic = 0; tonic < kTones; ++tonic) {
        for (std::size_t i = 0; i < kTones; ++i) {
            templates[tonic][(tonic + i) % kTones] = major[i];
            templates[kTones + tonic][(tonic + i) % kTones] = minor[i];
        }
    }
    for (ChromaSum& entry : templates) entry = standingOut(entry);
    return templates;
}

}  // namespace

const KeyTemplates& profileTemplates() {
    static const KeyTemplates made = onEveryTonic(kMajor, kMinor);
    return made;
}

const KeyTemplates& triadTemplates() {
    static const KeyTemplates made = onEveryTonic(kMajorTriad, kMinorTriad);
    return made;
}

KeyValues fitsOf(const KeyTemplates& templates, const ChromaSum& chroma) {
    const ChromaSum unit = standingOut(chroma);
    KeyValues fits{};
    for (std::size_t key = 0; key < kKeys; ++key)
        for (std::size_t i = 0; i < kTones; ++i) fits[key] += templates[key][i] * unit[i];
    return fits;
}

}  // namespace beatatlas::track::inner
