// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "key/pitchClasses.h"

namespace beatatlas {

/** Which notes the strongest semitone bands of a track belong to. */
struct NoteEncounters {
    /** Strongest bands on each pitch class. */
    std::array<std::int32_t, kPitchClasses> counts{};
    /** Share of their energy, 0 to 1. */
    std::array<double, kPitchClasses> values{};
};

/** Counts the (up to) twelve strongest bands.
 *  @param totals  magnitude of each band, summed over the track; band b holds the pitch class b mod
 *                 12 */
NoteEncounters encounterNotes(const std::vector<double>& totals);

}  // namespace beatatlas
