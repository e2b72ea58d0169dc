// SPDX-License-Identifier: MIT
#include "cli/EffortArguments.h"

#include <algorithm>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/memorySize.h"
#include "cli/numberBetween.h"
#include "cli/processors.h"

namespace app {

namespace {

// One for decoding, one for the beats and one for the key.
constexpr int kMostUsefulThreads = 3;
constexpr int kMostThreads = 256;

}  // namespace

EffortArguments::EffortArguments() {
    effort_.threads = std::min(processors(), kMostUsefulThreads);
}

void EffortArguments::declare(CLI::App& arguments) {
    arguments
        .add_option_function<std::string>(
            "--memory",
            [this](const std::string& text) { effort_.memoryBytes = *parseMemorySize(text); },
            "how much memory to take, about: 512M, 1.5G, 2GiB … (default: 1G); a track that does\n"
            "not fit is decoded anew for each pass")
        ->check(CLI::Validator(requireMemorySize, ""))
        ->option_text("SIZE");
    arguments
        .add_option("--threads", effort_.threads,
                    "how many threads may work at once (default: a processor each, at most 3)")
        ->check(wholeNumberBetween(1, kMostThreads))
        ->option_text("NUMBER");
}

}  // namespace app
