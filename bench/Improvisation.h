// SPDX-License-Identifier: MIT
#pragma once

#include "support/StereoTrack.h"

namespace beatatlas::bench {

/** What a synthesised track lacks to be as hard on the analysis as music is: a melody of plucked notes and loose
 *  percussion, both free in rhythm over the semiquavers of the beat.
 *
 *  A drum machine alone is heard by all bands on every quaver, which gives the beat list ten times the candidates of
 *  music, and the closing analysis ten times the work. */
struct Improvisation {
    int sampleRate = 44100;
    double bpm = 120.0;
    double firstFrame = 0.0;  ///< of the first semiquaver
    int tonic = 0;            ///< 0–11 from A upward; the scale is the natural minor
};

/** Adds the improvisation to a track, what passes full scale is cut. */
void improviseOver(test::StereoTrack& track, const Improvisation& plan);

}  // namespace beatatlas::bench
