// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "support/DrumKit.h"
#include "support/NearestScope.h"
#include "support/StereoTrack.h"
#include "support/TrackPlan.h"
#include "support/VoiceMix.h"
#include "support/Wavetable.h"

namespace beatatlas::test {

/** The true position of a beat. */
struct TrueBeat {
    std::int64_t frame = 0;
    /** 1–4 within the bar; 1 is the downbeat. */
    int number = 1;
};

/** Plays a TrackPlan: music of exactly known tempo, beats, key and level.
 *
 *  Every sample is a pure function of the plan and its position, so any part of a track of any
 *  length can be rendered without what came before; only the list of beats is kept. Samples are
 *  whole numbers in -32767 … 32767: a 16-bit file of the track holds exactly what render() returns.
 *  The bits are the same on every machine, with every compiler and in every rounding mode: no
 *  mathematics library, each operation rounded to nearest in double.
 *
 *  Threads: a synth may be shared, since render() changes nothing. */
class TrackSynth {
public:
    /** @param plan see its fields; a rate above 0, tempi above 0, a tonic of 0–11 and degrees of
     *             0–6. */
    explicit TrackSynth(TrackPlan plan);

    const TrackPlan& plan() const { return plan_; }
    /** Every beat that begins within the track, in order of time. */
    const std::vector<TrueBeat>& beats() const { return beats_; }
    /** Frames of the beats that begin a bar. */
    std::vector<std::int64_t> downbeats() const;

    /** Writes `count` frames from frame `from` ≥ 0 on; silence after the end of the track. */
    void render(std::int64_t from, std::int64_t count, float* left, float* right) const;
    StereoTrack renderAll() const;

private:
    TrackSynth(const NearestScope& nearest, TrackPlan plan);

    void listBeats();
    int firstBeatToPlay(std::int64_t from) const;
    const InstrumentLevels& levelsOfBar(int bar) const;

    void addBeats(VoiceMix& mix) const;
    void addDrums(VoiceMix& mix, int beat, std::int64_t onBeat, std::int64_t offBeat) const;
    void addKick(VoiceMix& mix, std::int64_t onset, double gain) const;
    void addSnare(VoiceMix& mix, std::int64_t onset, double gain) const;
    void addHat(VoiceMix& mix, std::int64_t onset, double gain) const;
    void addBassNote(VoiceMix& mix, int beat, Span eighth) const;
    void addChords(VoiceMix& mix) const;
    void addChord(VoiceMix& mix, int bar, Span held) const;

    TrackPlan plan_;
    TempoMap tempo_;
    Harmony harmony_;
    DrumKit drums_;
    Wavetable bassTone_;
    Wavetable chordTone_;
    std::vector<TrueBeat> beats_;
};

}  // namespace beatatlas::test
