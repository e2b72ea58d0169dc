// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "comparison/BeatSheet.h"

namespace comparison {

/** Reads a JSON document of this program's with one track, or a JAMS document: its first list of
 *  beats, and the tempo and the key that hold longest.
 *  @throws TrackError when it is neither, or damaged */
BeatSheet readBeatJson(std::string_view text);

}  // namespace comparison
