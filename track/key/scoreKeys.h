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

/** The mean chroma of at least one frame, adding up to 1. */
ChromaSum meanChroma(const KeyFrames& frames, FrameRange range);

/** How well each key fits what sounds in at least one frame: how often its notes are heard, and
 *  how much of the time the triad on its tonic. */
KeyValues scoreStretch(const KeyFrames& frames, FrameRange range);

/** The same for music that begins there: the triad it begins with counts as well. */
KeyValues scoreKeys(const KeyFrames& frames, FrameRange range);

/** The scores as probabilities. */
KeyValues keyProbabilities(const KeyValues& scores);

/** The key of the largest value, of equal ones the first. */
std::size_t bestKey(const KeyValues& values);

}  // namespace beatatlas::track::inner
