// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace beatatlas::test {

/** From `atSeconds` after the track's start the tempo is `bpm`; the beat that is running is not cut short. */
struct TempoChange {
    double atSeconds = 0.0;
    double bpm = 120.0;
};

/** Where each beat lies, for a tempo that is constant or changes at given times.
 *
 *  Beats are counted from 0 at `firstBeatFrame`. A change in the middle of a beat lets the rest of that beat run at
 *  the other tempo. Every position is computed from the start of its tempo stretch, so errors do not add up. */
class TempoMap {
public:
    /** @param changes ascending in time; those before the first beat only set its tempo. */
    TempoMap(int sampleRate, std::int64_t firstBeatFrame, double bpm,
             const std::vector<TempoChange>& changes);

    /** The frame nearest to `beat` ≥ 0; fractions are places between beats. */
    std::int64_t frameOfBeat(double beat) const;

private:
    struct Stretch {
        double firstFrame;
        double firstBeat;
        double framesPerBeat;
    };

    void changeTempo(double frame, double framesPerBeat);

    std::vector<Stretch> stretches_;
};

}  // namespace beatatlas::test
