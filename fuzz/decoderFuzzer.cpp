// SPDX-License-Identifier: MIT
// The tool's decoder on damaged files of every format. Only this project's code is instrumented:
// FFmpeg is the system's.
#include "fuzzDecoding.h"

using namespace beatatlas::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    const MemoryFile file(bytes, count);
    decodeTwice(file.path());
    return 0;
}
