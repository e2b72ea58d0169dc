// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace catalogue {

/** Text as it is searched and sorted: without regard to capitals, accents and the ways in which
 *  Unicode writes one letter (NFKC, default case folding, combining marks left out). Bytes that are
 *  not UTF-8 appear as base::displayName() shows them. */
std::string folded(std::string_view text);

/** What a search looks through: path, artist and title, folded, a line each. */
std::string searchText(std::string_view path, std::string_view artist, std::string_view title);

}  // namespace catalogue
