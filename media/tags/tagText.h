// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include <tstring.h>

namespace media {

/** TagLib's text as UTF-8. */
std::string plainText(const TagLib::String& text);

/** UTF-8 as TagLib's text. */
TagLib::String tagText(const std::string& text);

/** Whether two names differ in the capitals of plain letters at most. */
bool isSameWithoutCase(std::string_view one, std::string_view other);

}  // namespace media
