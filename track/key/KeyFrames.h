// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "track/evidence/ChromaStream.h"
#include "track/key/PeakStore.h"

namespace beatatlas::track::inner {

/** A value for each key: 0 … 11 the major ones from A upward, 12 … 23 the minor ones. */
inline constexpr std::size_t kKeys = 24;
using KeyValues = std::array<double, kKeys>;

/** What sounds in the frames of a track, but for those in which nothing does. */
struct KeyFrames {
    /** How far the triad on the tonic of each key is what sounds, adding up to 1. */
    using Triads = std::array<float, kKeys>;

    std::vector<double> seconds;  // the middle of each frame, ascending
    std::vector<Chroma> chroma;
    std::vector<Triads> triads;  // in the frame and its neighbours

    std::size_t size() const { return chroma.size(); }
};

/** Folds the peaks of a track.
 *  @param tuning           semitones above 440 Hz
 *  @param secondsPerFrame  frame i is centred on i + 1 of them */
KeyFrames foldFrames(const PeakStore& peaks, double tuning, double secondsPerFrame);

}  // namespace beatatlas::track::inner
