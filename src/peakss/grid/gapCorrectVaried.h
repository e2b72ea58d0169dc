// SPDX-License-Identifier: MIT
#pragma once

#include "peakss/BeatInfo.h"

namespace peakss {

/** Repairs the beat lengths of a grid of varied tempo in place, four consecutive beats at a time: a
 *  middle gap that is too short or too long against its neighbours loses, moves or gains a beat.
 *  Fewer than four beats stay as they are.
 *
 *  A beat that is gained stands before the third of the four although it lies behind it; the
 *  windows that follow see the negative gap as it is. */
void gapCorrectVaried(BeatList& grid);

/** What is done to one window: exactly four beats, of which up to one is lost or gained. */
void correctMiddleGap(BeatList& window, bool mayGain);

}  // namespace peakss
