// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>

#include "track/evidence/ChromaStream.h"
#include "track/key/PeakFinder.h"

namespace beatatlas::track::inner {

/** How much a tone of this pitch counts: 1 at middle C, 0.61 an octave away, 0.14 two octaves
 *  away. Whole semitones, the nearest one. */
float octaveWeight(float pitch);

/** What is weaker than this part of the strongest tone, both weighted, is in no chroma. A chroma
 *  hears a tenth of the strongest tone, which the tuning may weaken: to a fifth at 0.35
 *  semitones off the grid, and no tuning leaves all strong peaks of music farther off than
 *  that. */
inline constexpr float kLeastHeard = 0.02F;

/** The tones of a frame by pitch class, from A, adding up to 1.
 *
 *  Each semitone is as strong as its strongest peak near the middle. Weak ones do not count: they
 *  are mostly partials of strong ones, which would sound as fifths and thirds that nobody plays.
 *  @param tuning  of the track, semitones above 440 Hz
 *  @return nothing for a frame without a tone */
std::optional<Chroma> foldFrame(std::span<const SpectralPeak> peaks, double tuning);

}  // namespace beatatlas::track::inner
