// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "key/pitchClasses.h"

namespace beatatlas {

/** Which notes the strongest semitone bands of a track belong to. */
struct NoteEncounters {
    std::array<std::int32_t, kPitchClasses> counts{};  ///< strongest bands on each pitch class
    std::array<double, kPitchClasses> values{};        ///< share of their energy, 0 to 1
};

/** Counts the (up to) twelve strongest bands.
 *  @param totals  magnitude of each band, summed over the track; band b holds the pitch class b mod 12 */
NoteEncounters encounterNotes(const std::vector<double>& totals);

}  // namespace beatatlas
