// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "track/evidence/ChromaStream.h"
#include "track/key/KeyFrames.h"

namespace beatatlas::track::inner {

/** What each key is expected to sound like, brought to a mean of 0 and a length of 1. */
using KeyTemplates = std::array<ChromaSum, kKeys>;

/** How often the notes of a key sound in music of that key, from J. Albrecht, D. Shanahan, "The
 *  use of large corpora to train a new type of key-finding algorithm: an improved treatment of
 *  the minor mode", Music Perception 31 (2013). */
const KeyTemplates& profileTemplates();

/** The triad on the tonic of each key. */
const KeyTemplates& triadTemplates();

/** The correlation of a chroma with each template, −1 … 1. Where next to nothing stands out of
 *  the chroma, as in noise, it counts the less, down to 0. */
KeyValues fitsOf(const KeyTemplates& templates, const ChromaSum& chroma);

}  // namespace beatatlas::track::inner
