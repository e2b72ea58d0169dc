// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>

#include "track/evidence/ChromaStream.h"
#include "track/key/PeakFinder.h"

namespace beatatlas::track::inner {

/** The weight of a tone in a chroma: 1 at middle C, 0.61 an octave away, 0.14 two octaves away. The
 *  pitch is rounded to the nearest semitone. */
float octaveWeight(float pitch);

/** A tone weaker than this share of the strongest tone, both weighted, enters no chroma. A chroma
 *  includes tones down to a tenth of the strongest one. The tuning may weaken that one: to a fifth
 *  at 0.35 semitones off the grid, and under no tuning are all strong peaks of music farther
 *  off. */
inline constexpr float kLeastHeard = 0.02F;

/** The tones of a frame by pitch class, from A; the values add up to 1.
 *
 *  The strength of a semitone is that of its strongest peak, weighted by its distance from the
 *  middle of the semitone. Weak semitones are left out: they are mostly partials of strong ones and
 *  would show fifths and thirds that nobody plays.
 *  @param tuning  of the track, semitones above 440 Hz
 *  @return nothing for a frame without a tone */
std::optional<Chroma> foldFrame(std::span<const SpectralPeak> peaks, double tuning);

}  // namespace beatatlas::track::inner
