// SPDX-License-Identifier: MIT
#include "media/tags/tagText.h"

#include <algorithm>
#include <cctype>

namespace media {

std::string plainText(const TagLib::String& text) {
    return text.to8Bit(true);
}

TagLib::String tagText(const std::string& text) {
    return {text, TagLib::String::UTF8};
}

bool isSameWithoutCase(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) ==
               std::tolower(static_cast<unsigned char>(b));
    });
}

}  // namespace media
