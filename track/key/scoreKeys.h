// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "track/evidence/ChromaStream.h"
#include "track/key/KeyFrames.h"

namespace beatatlas::track::inner {

/** Frames first … end − 1 of a track. */
struct FrameRange {
    std::size_t first = 0;
    std::size_t end = 0;
};

/** The mean chroma of at least one frame; the values add up to 1. */
ChromaSum meanChroma(const KeyFrames& frames, FrameRange range);

/** How well each key fits a range of at least one frame: how often its notes sound, and for how
 *  much of the time the triad on its tonic sounds. */
KeyValues scoreStretch(const KeyFrames& frames, FrameRange range);

/** The same for music that begins at range.first: the triad it begins with is scored as well. */
KeyValues scoreKeys(const KeyFrames& frames, FrameRange range);

/** The scores as probabilities, which add up to 1. */
KeyValues keyProbabilities(const KeyValues& scores);

/** The key with the largest value; of equal values the first. */
std::size_t bestKey(const KeyValues& values);

}  // namespace beatatlas::track::inner
