// SPDX-License-Identifier: MIT
#include "envelope/HalfBeatShift.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "dsp/truncation.h"

namespace beatatlas {

namespace {

bool isOffGrid(int pulse, const std::vector<int>& beatIndex, int tolerance) {
    const int nearest = getNearBeatIndex(pulse, beatIndex);
    if (nearest < 0) return false;
    const std::int64_t beat = beatIndex[static_cast<std::size_t>(nearest)];
    return std::llabs(beat - pulse) > tolerance;
}

}  // namespace

bool shiftToPulses(EnvelopeGrid& grid, const std::vector<int>& pulses, int lead, float beatLength) {
    const int quarterBeat = truncToInt32(beatLength * 0.25F);
    const auto offGrid = std::count_if(pulses.begin(), pulses.end(), [&](int pulse) {
        return isOffGrid(pulse - lead, grid.beatIndex, quarterBeat);
    });
    if (offGrid <= static_cast<std::ptrdiff_t>(pulses.size() / 2)) return false;

    const double halfBeat = static_cast<double>(beatLength) * 0.5;
    const int shift = truncToInt32(halfBeat + 0.5);
    const bool hasNoRoomBefore = grid.beatIndex.front() <= halfBeat * 0.9 + 0.5;
    for (int& index : grid.beatIndex) {
        index = hasNoRoomBefore ? wrappingAdd(index, shift) : wrappingSubtract(index, shift);
    }
    grid.beatIndex.front() = std::max(grid.beatIndex.front(), 1);
    return true;
}

}  // namespace beatatlas
