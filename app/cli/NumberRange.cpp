// SPDX-License-Identifier: MIT
#include "cli/NumberRange.h"

#include <CLI/CLI.hpp>

namespace app {

std::optional<NumberRange> NumberRange::parse(const std::string& text, double least, double most) {
    const std::size_t colon = text.find(':');
    const std::string upper = colon == std::string::npos ? text : text.substr(colon + 1);
    NumberRange range;
    if (!CLI::detail::lexical_cast(text.substr(0, colon), range.lowest) ||
        !CLI::detail::lexical_cast(upper, range.highest))
        return std::nullopt;
    // Written so that what is no number is refused, too.
    const bool isInOrder =
        range.lowest >= least && range.lowest <= range.highest && range.highest <= most;
    return isInOrder ? std::optional(range) : std::nullopt;
}

}  // namespace app
