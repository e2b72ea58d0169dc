// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "track/evidence/OnsetEnvelopes.h"

namespace beatatlas::track::inner {

/** What tells a steady tempo from one that changes. */
struct Steadiness {
    /** How well the onsets keep in step with the tempo along the track, 0 … 1: the sum of what
     *  windows of eight seconds see of it, each with its phase, against the sum without phases.
     *  Steady tempo gives .95 and more, drummers less. */
    double coherence = 0.0;
    /** How much begins on beats of even distances, in parts of what begins on tracked ones. Steady
     *  tempo gives .95 and more; steps, ramps and drummers .92 and less. */
    double evenness = 0.0;
    bool isSteady = true;
};

/** @param hz       beats a second
 *  @param even     beats of even distances, seconds
 *  @param tracked  beats that follow the music, seconds */
Steadiness judgeSteadiness(const OnsetEnvelopes& onsets, double hz, const std::vector<double>& even,
                           const std::vector<double>& tracked);

/** The coherence alone. @param sharp  the onset envelope, 150 values a second; at least one */
double coherenceOf(const std::vector<float>& sharp, double hz);

}  // namespace beatatlas::track::inner
