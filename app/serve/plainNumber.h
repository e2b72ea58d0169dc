// SPDX-License-Identifier: MIT
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace app {

/** A number that is all of the text, in the form that programs write; nothing for any other text, or
 *  a number that the type does not hold. */
template <class Number>
std::optional<Number> plainNumber(std::string_view text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc() || stop != end) return std::nullopt;
    return number;
}

}  // namespace app
