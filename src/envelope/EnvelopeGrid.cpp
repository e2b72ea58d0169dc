// SPDX-License-Identifier: MIT
#include "envelope/EnvelopeGrid.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

bool isFirstBeatPresent(const peakss::BeatInfo& first, int sampleRate) {
    const float rate = static_cast<float>(sampleRate) / 128.0F;
    const float beatLength = first.interval * rate / 1000.0F;
    return static_cast<float>(first.pos) / 128.0F <= beatLength * 0.9F;
}

/** The last index from 0 on that fits; index 0 is not tested. */
template <class Fits>
int lastFitting(std::size_t size, Fits fits) {
    int low = 0;
    int high = static_cast<int>(size) - 1;
    while (low < high) {
        const int middle = low + (high - low + 1) / 2;
        if (fits(static_cast<std::size_t>(middle))) {
            low = middle;
        } else {
            high = middle - 1;
        }
    }
    return size == 0 ? -1 : low;
}

}  // namespace

EnvelopeGrid makeEnvelopeGrid(const peakss::BeatList& beats, int sampleRate) {
    const auto lengthAt = [sampleRate](const peakss::BeatInfo& beat) {
        return (sampleRate / 128.0) * static_cast<double>(beat.interval) / 1000.0;
    };
    EnvelopeGrid grid;
    grid.isPrepended = !isFirstBeatPresent(beats.front(), sampleRate);
    if (grid.isPrepended) {
        grid.beatIndex.push_back(1);
        grid.beatLength.push_back(lengthAt(beats.front()));
    }
    const std::size_t taken = beats.size() - (grid.isPrepended ? 1 : 0);
    for (std::size_t i = 0; i < taken; ++i) {
        grid.beatIndex.push_back(truncToInt32(beats[i].pos / 128.0 + 0.5));
        grid.beatLength.push_back(lengthAt(beats[i]));
    }
    grid.beatIndex.front() = std::max(grid.beatIndex.front(), 1);
    return grid;
}

int getBeatIndex(int x, const std::vector<int>& list) {
    return lastFitting(list.size(), [&](std::size_t i) { return list[i] <= x; });
}

int getNearBeatIndex(int x, const std::vector<int>& list) {
    return lastFitting(
        list.size(), [&](std::size_t i) { return (std::int64_t{list[i - 1]} + list[i]) / 2 <= x; });
}

double getBeatDiff(int x, const std::vector<int>& indices, const std::vector<double>& lengths) {
    const int index = getBeatIndex(x, indices);
    if (lengths.empty() || index < 0) return 0.0;
    return lengths[static_cast<std::size_t>(index)];
}

}  // namespace beatatlas
