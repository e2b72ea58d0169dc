// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace beatatlas::test {

/** From `atSeconds` after the track's start the tempo is `bpm`; the current beat is not cut
 *  short. */
struct TempoChange {
    double atSeconds = 0.0;
    double bpm = 120.0;
};

/** The position of each beat, for a tempo that is constant or changes at given times.
 *
 *  Beats are counted from 0 at `firstBeatFrame`. After a change in the middle of a beat the rest of
 *  that beat has the new tempo. Every position is computed from the start of its tempo section, so
 *  errors do not add up. */
class TempoMap {
public:
    /** @param changes ascending in time; those before the first beat only set its tempo. */
    TempoMap(int sampleRate, std::int64_t firstBeatFrame, double bpm,
             const std::vector<TempoChange>& changes);

    /** The frame nearest to `beat` ≥ 0; fractions are positions between beats. */
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
