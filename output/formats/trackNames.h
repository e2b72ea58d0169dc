// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "output/TrackReport.h"

namespace output {

/** @name What a track is called, as clean UTF-8 of one line
 *  @{ */

/** By its tags; empty where they do not say. */
std::string artistOf(const base::TrackSource& file);
std::string titleOf(const base::TrackSource& file);

/** "Artist - Title", as far as the tags have them, else the name of its file without folders. */
std::string trackName(const base::TrackSource& file);
/** @} */

}  // namespace output
