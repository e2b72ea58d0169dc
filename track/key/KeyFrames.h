// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "track/evidence/ChromaStream.h"
#include "track/key/PeakStore.h"

namespace beatatlas::track::inner {

/** A value for each key: 0 … 11 the major keys from A upward, 12 … 23 the minor keys. */
inline constexpr std::size_t kKeys = 24;
using KeyValues = std::array<double, kKeys>;

/** Chroma and triads of the frames of a track, without silent frames. */
struct KeyFrames {
    /** For each key, how well the triad on its tonic matches the sound; the values add up to 1. */
    using Triads = std::array<float, kKeys>;

    std::vector<double> seconds;  // the middle of each frame, ascending
    std::vector<Chroma> chroma;
    std::vector<Triads> triads;  // of each frame with its neighbours

    std::size_t size() const { return chroma.size(); }
};

/** Folds the peaks of a track into chroma.
 *  @param tuning           semitones above 440 Hz
 *  @param secondsPerFrame  frame i is centred at (i + 1) × secondsPerFrame */
KeyFrames foldFrames(const PeakStore& peaks, double tuning, double secondsPerFrame);

}  // namespace beatatlas::track::inner
