// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace base {

/** A file's name as one line of clean UTF-8 for people: control characters (which could steer a
 *  terminal) and bytes that are not UTF-8 appear as \n, \t or \xNN; everything else is
 *  unchanged. An empty name appears as ''. Not meant to be parsed. */
std::string displayName(std::string_view name);

/** Length in bytes, 1 to 4, of the UTF-8 character at the start of the text. 0 if there is none: an
 *  empty text, a byte that cannot begin a character, a character cut short, an overlong form, a
 *  surrogate or a value above U+10FFFF. */
std::size_t utf8CharacterLength(std::string_view text);

/** Whether the whole text is UTF-8. */
bool isUtf8(std::string_view text);

}  // namespace base
