// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/offeredWords.h"
#include "cli/suggestion.h"

namespace app {

/** Accepts the names of an option's values, and nothing else. */
template <class Value>
CLI::Validator oneOf(const std::map<std::string, Value>& values) {
    std::vector<std::string> names;
    for (const auto& [name, value] : values) names.push_back(name);
    const auto toNumber = [values, names](std::string& text) -> std::string {
        if (const auto found = values.find(text); found != values.end()) {
            text = std::to_string(static_cast<std::underlying_type_t<Value>>(found->second));
            return {};
        }
        return fmt::format("takes one of {}, not {}{}", fmt::join(names, ", "), text,
                           suggestion(text, names));
    };
    return offering({toNumber, ""}, names);
}

}  // namespace app
