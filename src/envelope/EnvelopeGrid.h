// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "peakss/BeatInfo.h"

namespace beatatlas {

/** A beat grid on the time scale of a level envelope, one value per 128 frames. */
struct EnvelopeGrid {
    /** Envelope index of each beat; the first is at least 1. */
    std::vector<int> beatIndex;
    /** Envelope values per beat, at each beat. */
    std::vector<double> beatLength;
    /** The first beat of the track was missing: the grid starts with a made-up beat at index 1, the
     *  given beats follow one index later, and the last of them is left out. */
    bool isPrepended = false;
};

/** @param beats  at least one */
EnvelopeGrid makeEnvelopeGrid(const peakss::BeatList& beats, int sampleRate);

/** The last index whose entry is ≤ x; 0 when all are greater, −1 for an empty list.
 *
 *  A binary search, as are the two below. A varied-tempo grid need not be ascending: what the
 *  search then finds is part of the result, so its halving rule is fixed. */
int getBeatIndex(int x, const std::vector<int>& list);

/** The index whose entry is nearest to x, a midpoint tie going to the later one; −1 for an empty
 *  list. */
int getNearBeatIndex(int x, const std::vector<int>& list);

/** The beat length in force at envelope index x; 0 when `lengths` or `indices` is empty. */
double getBeatDiff(int x, const std::vector<int>& indices, const std::vector<double>& lengths);

}  // namespace beatatlas
