// SPDX-License-Identifier: MIT
// Samples without a header, as they come in by standard input. An input is the text of --raw, a line
// feed, and the samples.
#include <algorithm>
#include <string>

#include <unistd.h>

#include "fuzzDecoding.h"
#include "media/StandardInput.h"
#include "require.h"

using namespace beatatlas::fuzz;

namespace {

void checkFormat(const media::RawFormat& format) {
    require(format.rate >= 1000 && format.rate <= 1536000, "a rate that can be converted");
    require(format.channels >= 1 && format.channels <= 8, "channels that can be folded");
    require(format.bytesPerFrame() >= 1 && format.bytesPerFrame() <= 64, "frames of some bytes");
    const std::string text =
        format.samples + ":" + std::to_string(format.rate) + ":" + std::to_string(format.channels);
    const auto again = media::parseRawFormat(text);
    require(again && again->bytesPerFrame() == format.bytesPerFrame(), "a format that can be told");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    const std::uint8_t* end = bytes + count;
    const std::uint8_t* line = std::find(bytes, end, static_cast<std::uint8_t>('\n'));
    const auto format = media::parseRawFormat(std::string(bytes, line));
    if (!format) return 0;
    checkFormat(*format);
    const std::uint8_t* samples = std::min(line + 1, end);
    const MemoryFile file(samples, static_cast<std::size_t>(end - samples));
    // A regular file is read in place, so that the next input's comes after this one.
    require(dup2(file.descriptor(), STDIN_FILENO) == STDIN_FILENO, "standard input");
    media::StandardInput::setRawFormat(format);
    const std::size_t frames = decodeTwice("-");
    const auto whole = static_cast<std::size_t>((end - samples) / format->bytesPerFrame());
    const bool isConverted = format->rate != 44100 && format->rate != 48000;
    require(isConverted || frames == whole, "a frame for each that is there");
    return 0;
}
