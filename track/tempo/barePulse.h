// SPDX-License-Identifier: MIT
#pragma once

#include "track/evidence/EvidenceListener.h"
#include "track/tempo/BeatLine.h"

namespace beatatlas::track::inner {

/** Whether beats of a line are a bare pulse: a like sound on each, and nothing between them, as
 *  of a metronome. Music is none: its chords change, some notes lie between beats, or every second
 *  beat differs.
 *  @param period  beat interval in twelfths of a beat of the line
 *  @param phase   position of the first beat, in the same unit
 *  @param beats   how many, at least eight */
bool isBarePulse(const Evidence& evidence, const BeatLine& line, int period, int phase, int beats);

}  // namespace beatatlas::track::inner
