// SPDX-License-Identifier: MIT
#pragma once

#include "support/StereoTrack.h"

namespace beatatlas::bench {

/** Makes a synthesised track as demanding for the analysis as music: a melody of plucked notes and
 *  loosely timed percussion, both with random rhythms on the semiquavers of the beat.
 *
 *  A drum machine alone triggers all bands on every quaver, which yields ten times the beat
 *  candidates of music, and ten times the work in the closing analysis. */
struct Improvisation {
    int sampleRate = 44100;
    double bpm = 120.0;
    /** Of the first semiquaver. */
    double firstFrame = 0.0;
    /** 0–11 from A upward; the scale is the natural minor. */
    int tonic = 0;
};

/** Adds the improvisation to a track and clips at full scale. */
void improviseOver(test::StereoTrack& track, const Improvisation& plan);

}  // namespace beatatlas::bench
