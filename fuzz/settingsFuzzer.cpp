// SPDX-License-Identifier: MIT
// Any bytes as the file of settings of each command. The commands have no tracks, so that they do
// nothing but understand it.
#include <array>
#include <string>

#include <fcntl.h>

#include "FuzzersRoundingMode.h"
#include "cli/Program.h"
#include "fuzzDecoding.h"
#include "io/ResultStream.h"
#include "require.h"

using namespace beatatlas::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    static const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const FuzzersRoundingMode mode;
    const MemoryFile file(bytes, count);
    const std::string config = "--config=" + file.path();
    for (const char* command : {"analyze", "draw", "export", "report"}) {
        const std::array<const char*, 3> words = {"beatatlas", command, config.c_str()};
        app::ResultStream results(nowhere);
        const int status = app::Program(results).run(static_cast<int>(words.size()), words.data());
        require(status == 2, "settings that make no sense, or no tracks");
    }
    return 0;
}
