// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "envelope/EnvelopeGrid.h"

namespace beatatlas {

/** Pulses that start a syncopated figure. Such figures start on the beat, which sets beats apart
 *  from off-beats, and most often on the first of a bar. */
struct RhythmFigures {
    /** A gap of 2½ beats, then one of 1½ or 2. */
    std::vector<int> figureA;
    /** A gap of 1½ beats. */
    std::vector<int> figureB;
    /** Size of figureB less the pulses of plain one-beat runs. */
    int countB = 0;

    /** The pulses to trust: figureA when it is frequent enough, else figureB, else none (null). */
    const std::vector<int>* trusted() const;
};

/** @param peaks  envelope indices of the pulses, ascending; fewer than three give no figures */
RhythmFigures findRhythmFigures(const std::vector<int>& peaks, const EnvelopeGrid& grid);

}  // namespace beatatlas
