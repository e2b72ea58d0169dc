// SPDX-License-Identifier: MIT
#include "base/displayName.h"

#include <fmt/format.h>

namespace base {

namespace {

unsigned byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

std::size_t lengthByFirstByte(unsigned first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return 2;
    if (first >= 0xE0 && first <= 0xEF) return 3;
    if (first >= 0xF0 && first <= 0xF4) return 4;
    return 0;
}

/** The limits of the second byte rule out overlong forms, surrogates and values above U+10FFFF. */
bool isSecondByte(unsigned first, unsigned second) {
    const unsigned lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    return second >= lowest && second <= highest;
}

bool hasContinuation(std::string_view text, std::size_t length) {
    if (!isSecondByte(byteAt(text, 0), byteAt(text, 1))) return false;
    for (std::size_t i = 2; i < length; ++i) {
        if ((byteAt(text, i) & 0xC0) != 0x80) return false;
    }
    return true;
}

/** The controls C0, DEL, and C1 (U+0080 to U+009F), which terminals obey too. */
bool isControl(std::string_view character) {
    const unsigned first = byteAt(character, 0);
    if (character.size() == 1) return first < 0x20 || first == 0x7F;
    return character.size() == 2 && first == 0xC2 && byteAt(character, 1) < 0xA0;
}

std::string escaped(std::string_view bytes) {
    if (bytes == "\n") return "\\n";
    if (bytes == "\t") return "\\t";
    std::string text;
    for (const char byte : bytes)
        text += fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
    return text;
}

}  // namespace

std::size_t utf8CharacterLength(std::string_view text) {
    if (text.empty()) return 0;
    const std::size_t length = lengthByFirstByte(byteAt(text, 0));
    if (length > text.size()) return 0;
    return length < 2 || hasContinuation(text, length) ? length : 0;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = utf8CharacterLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string displayName(std::string_view name) {
    if (name.empty()) return "''";
    std::string shown;
    while (!name.empty()) {
        const std::size_t length = utf8CharacterLength(name);
        const std::string_view character = name.substr(0, length == 0 ? 1 : length);
        shown += length == 0 || isControl(character) ? escaped(character) : std::string(character);
        name.remove_prefix(character.size());
    }
    return shown;
}

}  // namespace base
