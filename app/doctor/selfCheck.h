// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "beatatlas/track.hpp"
#include "doctor/Check.h"

namespace app {

/** Analyses KnownTrack from a file in memory, in the ways in which the program analyses any track,
 *  and compares what is found with what the track is made of: tempo, beats, bars and key; and the
 *  results of a session, bit for bit, with those of another rounding mode and number of threads and
 *  with the record of them. */
std::vector<Check> checkOnKnownTrack();

/** @name The comparisons, of any result
 *  @{ */
Check checkTempo(const beatatlas::track::TrackResult& result);
Check checkBeats(const beatatlas::track::TrackResult& result);
Check checkKey(const beatatlas::track::TrackResult& result);
/** @} */

/** FNV-1a (Fowler, Noll, Vo), 64 bits, of the bits of all that a session reports: tempo, beats,
 *  waves and key. */
std::uint64_t digestOf(const beatatlas::track::TrackResult& result);

}  // namespace app
