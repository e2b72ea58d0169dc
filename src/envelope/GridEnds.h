// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace beatatlas {

/** Ends the grid within the track: drops a last beat at or beyond the end, or appends one more beat
 *  where there is room for it.
 *
 *  @param beats   at least one
 *  @param length  frames of the track */
void fitTail(peakss::BeatList& beats, int sampleRate, int length);

/** Drops a first beat before the start of the track, or puts one more beat in front where there is
 *  room for it. */
void fitHead(peakss::BeatList& beats, int sampleRate);

}  // namespace beatatlas
