// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "track/evidence/ChromaStream.h"
#include "track/key/KeyFrames.h"

namespace beatatlas::track::inner {

/** The chroma expected of each key, normalised to a mean of 0 and a length of 1. */
using KeyTemplates = std::array<ChromaSum, kKeys>;

/** How often each note sounds in music of each key, from J. Albrecht, D. Shanahan, "The use of
 *  large corpora to train a new type of key-finding algorithm: an improved treatment of the minor
 *  mode", Music Perception 31 (2013). */
const KeyTemplates& profileTemplates();

/** The notes of the triad on the tonic of each key. */
const KeyTemplates& triadTemplates();

/** The correlation of a chroma with each template, −1 … 1. For a nearly flat chroma, as of noise,
 *  it is reduced, down to 0. */
KeyValues fitsOf(const KeyTemplates& templates, const ChromaSum& chroma);

}  // namespace beatatlas::track::inner
