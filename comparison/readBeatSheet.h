// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "comparison/BeatSheet.h"

namespace comparison {

/** Whether bytes from a file's beginning are those of a text. */
bool isText(std::string_view bytes);

/** Reads what a text says of a track: a JSON document of this program's with one track, a JAMS
 *  document, Audacity labels, or a list with a time a line.
 *  @throws TrackError with what is wrong, and in which line */
BeatSheet readBeatSheet(std::string_view text);

/** Puts beats into order, and the tempo beside them where none is stated.
 *  @throws TrackError when a time is no number or beyond any track */
BeatSheet finished(BeatSheet sheet);

}  // namespace comparison
