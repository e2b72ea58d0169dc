// SPDX-License-Identifier: MIT
#include "io/columns.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

#include "base/displayName.h"

namespace app {

namespace {

/** Switches the calling thread to a UTF-8 locale while it exists: file names are shown in UTF-8 in
 *  every locale, and nothing else in the program depends on the locale. */
class Utf8Scope {
public:
    Utf8Scope() {
        static const locale_t kUtf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        if (kUtf8 != nullptr) before_ = uselocale(kUtf8);
    }
    ~Utf8Scope() {
        if (before_ != nullptr) uselocale(before_);
    }
    Utf8Scope(const Utf8Scope&) = delete;
    Utf8Scope& operator=(const Utf8Scope&) = delete;

private:
    locale_t before_ = nullptr;
};

wchar_t codePoint(std::string_view character) {
    const auto first = static_cast<unsigned char>(character.front());
    if (character.size() == 1) return static_cast<wchar_t>(first);
    // The first byte of n has n marking bits and a zero, the others have two.
    unsigned value = first & (0x7FU >> character.size());
    for (const char byte : character.substr(1))
        value = (value << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
    return static_cast<wchar_t>(value);
}

/** A character that the system does not know may be a wide one from U+0800 on. */
std::size_t widthOf(std::string_view character) {
    const int width = wcwidth(codePoint(character));
    if (width >= 0) return static_cast<std::size_t>(width);
    return character.size() > 2 ? 2 : 1;
}

std::size_t lengthOfFirst(std::string_view text) {
    return std::max<std::size_t>(1, base::utf8CharacterLength(text));
}

}  // namespace

std::size_t columnsOf(std::string_view text) {
    const Utf8Scope scope;
    std::size_t columns = 0;
    while (!text.empty()) {
        const std::size_t length = lengthOfFirst(text);
        columns += widthOf(text.substr(0, length));
        text.remove_prefix(length);
    }
    return columns;
}

std::string fitted(std::string_view text, std::size_t columns) {
    const Utf8Scope scope;
    std::size_t kept = 0;
    while (kept < text.size()) {
        const std::size_t length = lengthOfFirst(text.substr(kept));
        const std::size_t width = widthOf(text.substr(kept, length));
        if (width > columns) break;
        columns -= width;
        kept += length;
    }
    return std::string(text.substr(0, kept));
}

}  // namespace app
