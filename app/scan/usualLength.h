// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace app {

/** Whether a file's name ends as those of music do: what cannot be read of such a file is a track
 *  lost, and worth a line; of any other file it only shows that it is none. */
bool hasMusicEnding(std::string_view path);

/** Those endings, with their dots and in small letters. */
std::vector<std::string> musicEndings();

/** About how many seconds of music a file of that name and size holds: what is heaviest is taken
 *  first, so that no long track is left over when everything else is done. */
double usualSeconds(std::string_view path, std::int64_t bytes);

}  // namespace app
