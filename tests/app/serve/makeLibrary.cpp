// SPDX-License-Identifier: MIT
// Makes a catalogue of invented tracks, for tests of the application in a browser.
#include <cstdio>
#include <exception>
#include <string>

#include "bench/SyntheticCatalogue.h"

int main(int argc, char** argv) try {
    if (argc != 3) return 2;
    catalogue::Catalogue catalogue(argv[1], catalogue::Catalogue::Access::create);
    bench::fillCatalogue(catalogue, std::stoll(argv[2]));
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
