// SPDX-License-Identifier: MIT
// A host of the static libraries that uses both headers: the inner names do not meet those of the values.
#include <cstdio>
#include <vector>

#include "beatatlas/beatatlas.h"
#include "beatatlas/track.hpp"

int main() {
    const std::vector<float> quiet(44100, 0.0F);
    const auto result = beatatlas::track::analyze({}, 44100, quiet.data(), quiet.data(), 44100);
    void* session = BA_CreateConst44k(44100, 32, false, false, false);
    BA_Release(session);
    std::printf("%zu points\n", result.zoomWave.size());
    return result.zoomWave.size() == 150 && !result.bpm ? 0 : 1;
}
