// SPDX-License-Identifier: MIT
#include "cli/keyNotation.h"

#include <map>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/oneOf.h"

namespace app {

namespace {

std::map<std::string, output::KeyNotation> notations() {
    return {{"standard", output::KeyNotation::standard}, {"sharps", output::KeyNotation::sharps},
            {"flats", output::KeyNotation::flats},       {"camelot", output::KeyNotation::camelot},
            {"openkey", output::KeyNotation::openKey},   {"german", output::KeyNotation::german},
            {"solfege", output::KeyNotation::solfege}};
}

}  // namespace

CLI::Option* addKeyNotation(CLI::App& arguments, std::optional<output::KeyNotation>& notation) {
    return arguments
        .add_option("--key-notation", notation,
                    "name keys in one way alone:\n"
                    "standard: F# minor, Bb major, with the fewer accidentals\n"
                    "sharps: F# minor, A# major\n"
                    "flats: Gb minor, Bb major\n"
                    "camelot: 11A, 6B\n"
                    "openkey: 4m, 11d\n"
                    "german: fis-Moll, B-Dur\n"
                    "solfege: Fa# minor, Sib major")
        ->transform(oneOf(notations()))
        ->option_text("NAMES");
}

std::vector<std::string> wheelKeys() {
    constexpr int kHours = 12;
    std::vector<std::string> keys;
    for (int hour = 1; hour <= kHours; ++hour)
        for (const char* side : {"A", "B"}) keys.push_back(std::to_string(hour) + side);
    return keys;
}

}  // namespace app
