// SPDX-License-Identifier: MIT
#include "cli/offeredWords.h"

#include <fmt/format.h>

namespace app {

namespace {

constexpr char kBetweenWords = '|';

}  // namespace

CLI::Validator offering(CLI::Validator validator, const std::vector<std::string>& words) {
    return validator.description(
        fmt::format("{}", fmt::join(words, std::string(1, kBetweenWords))));
}

std::vector<std::string> offeredWords(const CLI::Option& option) {
    // "TEXT:dark|light": the descriptions of validators stand behind the type.
    const std::string type = option.get_type_name();
    const std::size_t colon = type.find(':');
    if (colon == std::string::npos) return {};
    return CLI::detail::split(type.substr(colon + 1), kBetweenWords);
}

}  // namespace app
