// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "comparison/BeatSheet.h"

namespace comparison {

/** Reads a list of beats, one a line: a time in seconds, and behind spaces, tabs, a comma or a
 *  semicolon what is known of it, if anything:
 *
 *  - the beat's number within the bar, or 1 for a downbeat and 0 for any other beat
 *  - the bar and the beat's number in it: 12.3
 *  - a label's end and its text, as Audacity writes labels; the text is one of these, or anything
 *
 *  Empty lines and those that begin with #, % or a backslash say nothing.
 *  @throws TrackError that names the line where no time is read */
BeatSheet readBeatText(std::string_view text);

}  // namespace comparison
