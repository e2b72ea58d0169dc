// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "envelope/EnvelopeGrid.h"

namespace beatatlas {

/** Moves the whole grid by half a beat when more than half of the pulses lie off its beats.
 *
 *  The move goes back, or forward where the first beat has no room before it; afterwards the first
 *  beat is at index 1 at least.
 *
 *  @param pulses      envelope indices of the pulses to ask
 *  @param lead        envelope values by which a pulse's maximum follows its beat
 *  @param beatLength  envelope values per beat at the tempo of the track
 *  @return            whether the grid moved */
bool shiftToPulses(EnvelopeGrid& grid, const std::vector<int>& pulses, int lead, float beatLength);

}  // namespace beatatlas
