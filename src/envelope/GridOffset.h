// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "peakss/BeatInfo.h"

namespace beatatlas {

/** The number of the beat after one with this number, in bars of four. */
constexpr std::int32_t nextBeatNumber(std::int32_t number) {
    return number >= 4 ? 1 : number + 1;
}

/** The number of the beat before one with this number, in bars of four. */
constexpr std::int32_t previousBeatNumber(std::int32_t number) {
    return number <= 1 ? 4 : number - 1;
}

/** Moves every beat by `shift` frames, then takes as many beats from the front as lie before the
 *  start of the track, and as many from the back as would lie beyond `length` frames if moved once
 *  more. */
void shiftBeats(peakss::BeatList& beats, std::int32_t shift, std::int32_t length);

/** Adds beats every `step` frames before the first beat, down to the start of the track, and after
 *  the last one, up to `length` frames. Nothing is added to an empty list or for step ≤ 0. */
void fillEnds(peakss::BeatList& beats, std::int32_t step, std::int32_t length);

}  // namespace beatatlas
