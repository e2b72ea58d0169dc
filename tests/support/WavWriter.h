// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace beatatlas::test {

/** Writes a 16-bit stereo WAV file block by block; memory is one block's.
 *
 *  Life: open() → write() … → close(). The length is announced in open(), since the header comes first. */
class WavWriter {
public:
    /** False when the file cannot be made, or `frames` do not fit a WAV file (4 GiB). */
    bool open(const std::string& path, int sampleRate, std::int64_t frames);
    /** Samples in 16-bit scale; fractions are cut, values beyond ±32767 limited. */
    void write(const float* left, const float* right, std::int64_t count);
    /** True when everything reached the file. */
    bool close();

private:
    std::ofstream file_;
    std::vector<char> bytes_;
};

}  // namespace beatatlas::test
