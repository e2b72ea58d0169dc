// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace app {

/** The number of terminal columns that UTF-8 text takes: two for a wide character, none for a
 *  combining one, whatever the caller's locale. Bytes that are not part of a character count as one
 *  each. */
std::size_t columnsOf(std::string_view text);

/** The first characters of the text, as many as fit. */
std::string fitted(std::string_view text, std::size_t columns);

}  // namespace app
