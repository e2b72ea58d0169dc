// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace beatatlas {

/** Ends the grid within the track: drops a last beat at or beyond the end, or appends one more beat
 *  where there is room for it. An interval that is not a number or too long for 32 bits appends
 *  none.
 *
 *  @param beats       at least one, else the behaviour is undefined; positions in frames, numbered
 *                     1 to 4
 *  @param sampleRate  frames per second
 *  @param length      frames of the track */
void fitTail(peakss::BeatList& beats, int sampleRate, int length);

/** Drops a first beat before the start of the track, or puts one more beat in front where there is
 *  room for it. An interval that is not a number or too long for 32 bits adds none.
 *
 *  @param beats       positions in frames, numbered 1 to 4; an empty list stays empty
 *  @param sampleRate  frames per second */
void fitHead(peakss::BeatList& beats, int sampleRate);

}  // namespace beatatlas
