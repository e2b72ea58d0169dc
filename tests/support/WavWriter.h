// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace beatatlas::test {

/** Writes a 16-bit stereo WAV file block by block, with the memory of one block.
 *
 *  Life: open() → write() … → close(). open() takes the length, since the header comes first. */
class WavWriter {
public:
    /** False if the file cannot be created, or if `frames` do not fit into a WAV file (4 GiB). */
    bool open(const std::string& path, int sampleRate, std::int64_t frames);
    /** Samples in 16-bit scale; fractions are truncated, values beyond ±32767 limited. */
    void write(const float* left, const float* right, std::int64_t count);
    /** True if everything was written. */
    bool close();

private:
    std::ofstream file_;
    std::vector<char> bytes_;
};

}  // namespace beatatlas::test
