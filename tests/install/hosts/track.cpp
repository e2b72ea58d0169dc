// SPDX-License-Identifier: MIT
// The smallest host of a whole track in C++: one second of silence, and the version it was compiled with.
#include <beatatlas/track.hpp>
#include <cstdio>
#include <vector>

int main() {
    const std::vector<float> silence(44100);
    const auto result =
        beatatlas::track::analyze({}, 44100, silence.data(), silence.data(), silence.size());
    std::printf("track %s %s\n", BEATATLAS_VERSION,
                result.beats.empty() ? "analyzed" : "found beats");
}
