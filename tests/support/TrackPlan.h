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
    /** Four on the floor. */
    everyBeat,
    /** Answered by the snare on two and four. */
    firstAndThird,
};

/** What a synthesised track plays. Four beats to the bar; the snare falls on two and four, hats and
 *  bass on every eighth, a chord lasts one bar. */
struct TrackPlan {
    int sampleRate = 44100;
    std::int64_t lengthFrames = 0;
    double bpm = 120.0;
    /** Ascending in time. */
    std::vector<TempoChange> tempoChanges;
    /** The position of the off-beat eighth within its beat: 0.5 straight, 2/3 shuffle. */
    double swing = 0.5;
    /** Only the first chord sounds in the intro; then the first beat follows, a downbeat. */
    std::int64_t introFrames = 0;

    /** 0–11 from A upward. */
    int tonic = 0;
    KeyMode mode = KeyMode::major;
    /** Degrees of the scale from 0, one per bar. */
    std::vector<int> progression = {0, 3, 4, 0};
    double concertPitchHz = 440.0;

    /** Of the whole mix; 1 is full scale. */
    double level = 0.9;
    InstrumentLevels levels;
    /** Ascending; `levels` applies before the first one. */
    std::vector<Section> sections;
    KickPattern kickPattern = KickPattern::everyBeat;
    /** 0: both channels are equal; 1: the outer notes of each chord and the hats are panned fully
     *  to one side. */
    double stereoWidth = 0.0;
    /** Of the noise in snare and hats. */
    std::uint64_t seed = 1;
};

/** A kick on every beat and nothing else, from the first frame on: its onsets are unambiguous. */
TrackPlan dryKickPlan(int sampleRate, std::int64_t lengthFrames, double bpm);

}  // namespace beatatlas::test
