// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "support/Harmony.h"
#include "support/TempoMap.h"

namespace beatatlas::test {

/** Peak level of each instrument relative to full scale. With a sum of at most 1 nothing is
 *  clipped. */
struct InstrumentLevels {
    double kick = 0.36;
    double snare = 0.20;
    double hats = 0.09;
    double bass = 0.17;
    double chords = 0.18;
};

/** Other instrument levels from a given bar on: breaks, build-ups, endings. Bar 0 begins at the
 *  first beat. */
struct Section {
    int firstBar = 0;
    InstrumentLevels levels;
};

enum class KickPattern {
    everyBeat,      ///< four on the floor
    firstAndThird,  ///< answered by the snare on two and four
};

/** What a synthesised track plays. Four beats to the bar; the snare falls on two and four, hats and
 *  bass on every eighth, a chord lasts one bar. */
struct TrackPlan {
    int sampleRate = 44100;
    std::int64_t lengthFrames = 0;
    double bpm = 120.0;
    std::vector<TempoChange> tempoChanges;  ///< ascending in time
    /** The position of the off-beat eighth within its beat: 0.5 straight, 2/3 shuffle. */
    double swing = 0.5;
    /** Only the first chord sounds in the intro; then the first beat follows, a downbeat. */
    std::int64_t introFrames = 0;

    int tonic = 0;  ///< 0–11 from A upward
    KeyMode mode = KeyMode::major;
    std::vector<int> progression = {0, 3, 4, 0};  ///< degrees of the scale from 0, one per bar
    double concertPitchHz = 440.0;

    double level = 0.9;  ///< of the whole mix; 1 is full scale
    InstrumentLevels levels;
    std::vector<Section> sections;  ///< ascending; `levels` applies before the first one
    KickPattern kickPattern = KickPattern::everyBeat;
    /** 0: both channels are equal; 1: the outer notes of each chord and the hats are panned fully
     *  to one side. */
    double stereoWidth = 0.0;
    std::uint64_t seed = 1;  ///< of the noise in snare and hats
};

/** A kick on every beat and nothing else, from the first frame on: its onsets are unambiguous. */
TrackPlan dryKickPlan(int sampleRate, std::int64_t lengthFrames, double bpm);

}  // namespace beatatlas::test
