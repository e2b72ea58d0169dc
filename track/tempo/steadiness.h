// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/evidence/OnsetEnvelopes.h"

namespace beatatlas::track::inner {

/** The measures that distinguish a steady tempo from a changing one. */
struct Steadiness {
    /** How well the onsets stay in phase with the tempo along the track, 0 … 1: the tempo's
     *  spectral values in windows of eight seconds, summed with their phases, relative to the sum
     *  of their magnitudes. A steady tempo gives 0.95 and more, drummers less. */
    double coherence = 0.0;
    /** The onset strength on evenly spaced beats, relative to that on tracked beats. A steady tempo
     *  gives 0.95 and more; steps, ramps and drummers 0.92 and less. */
    double evenness = 0.0;
    bool isSteady = true;
};

/** @param hz       beats per second
 *  @param even     evenly spaced beats, seconds
 *  @param tracked  beats that follow the music, seconds */
Steadiness judgeSteadiness(const OnsetEnvelopes& onsets, double hz, const std::vector<double>& even,
                           const std::vector<double>& tracked);

/** The coherence alone. @param sharp  the onset envelope, 150 values a second; at least one */
double coherenceOf(const std::vector<float>& sharp, double hz);

}  // namespace beatatlas::track::inner
