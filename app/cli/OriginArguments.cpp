// SPDX-License-Identifier: MIT
#include "cli/OriginArguments.h"

#include <map>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/numberBetween.h"
#include "cli/oneOf.h"

namespace app {

namespace {

constexpr double kMostOffsetMs = 1e8;  // more than a day

std::map<std::string, output::TimeOrigin::At> origins() {
    return {{"music", output::TimeOrigin::At::music}, {"file", output::TimeOrigin::At::file}};
}

}  // namespace

void OriginArguments::declare(CLI::App& arguments) {
    arguments
        .add_option("--origin", origin_.at,
                    "where position 0 is: at the first frame of music (music; default), or at the\n"
                    "first that a decoder yields which leaves out no encoder's delay (file)")
        ->transform(oneOf(origins()))
        ->option_text("PLACE");
    arguments
        .add_option("--offset", origin_.offsetMs,
                    "add so many milliseconds to every position, say -12.5")
        ->check(numberBetween(-kMostOffsetMs, kMostOffsetMs))
        ->option_text("MS");
}

}  // namespace app
