// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

namespace app {

/** The options that a part of a command's declaration adds, in their order. */
template <class Declare>
std::vector<const CLI::Option*> declaredOptions(CLI::App& arguments, Declare declare) {
    const auto all = [&arguments] { return std::as_const(arguments).get_options(); };
    const auto before = static_cast<std::ptrdiff_t>(all().size());
    declare();
    const std::vector<const CLI::Option*> options = all();
    return {options.begin() + before, options.end()};
}

/** The first of them that the command line gives; null where there is none. */
inline const CLI::Option* firstGiven(const std::vector<const CLI::Option*>& options) {
    const auto given = std::find_if(options.begin(), options.end(),
                                    [](const CLI::Option* option) { return option->count() > 0; });
    return given == options.end() ? nullptr : *given;
}

}  // namespace app
