// SPDX-License-Identifier: MIT
#include "peakss/grid/gapCorrectConstant.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "dsp/truncation.h"
#include "peakss/grid/beatLength.h"

namespace peakss {

using beatatlas::truncToInt32;

namespace {

// A hundred times what the longest track at the fastest tempo holds.
constexpr std::int64_t kMostBeats = 4'000'000;

struct EvenGrid {
    float beatSamples;
    double start;              // samples
    std::int64_t firstAnchor;  // index
    std::int64_t lastAnchor;   // index
    std::int64_t size;
};

// Anchors and beat length are single precision, as results are compared; the beats themselves are
// placed in double, a float sum would drift.
EvenGrid evenGrid(float first, float last, int beatsBetween, int length) {
    const float beatSamples = (last - first) / static_cast<float>(beatsBetween);
    // An anchor ahead of the track by less than a beat opens the grid itself.
    const std::int64_t ahead = std::max(truncToInt32(first / beatSamples), 0);
    const std::int64_t behind =
        std::max(truncToInt32((static_cast<float>(length) - last) / beatSamples), 0);
    const double start =
        static_cast<double>(first) - static_cast<double>(ahead) * static_cast<double>(beatSamples);
    return {beatSamples, start, ahead, ahead + beatsBetween, ahead + 1 + beatsBetween + behind};
}

bool isUsable(const EvenGrid& even) {
    return std::isfinite(even.beatSamples) && even.beatSamples > 0.0F && even.size <= kMostBeats;
}

BeatList evenBeats(const EvenGrid& even, float interval) {
    BeatInfo beat;
    beat.interval = interval;
    beat.band = -1;
    BeatList beats;
    beats.reserve(static_cast<std::size_t>(even.size));
    double pos = even.start;
    for (std::int64_t i = 0; i < even.size; ++i) {
        beat.pos = truncToInt32(pos);
        beats.push_back(beat);
        pos += static_cast<double>(even.beatSamples);
    }
    return beats;
}

}  // namespace

void gapCorrectConstant(BeatList& grid, int length, int firstAnchor, int lastAnchor,
                        int samplingRate) {
    const int size = static_cast<int>(grid.size());
    const int first = std::max(firstAnchor, 0);
    const int last = lastAnchor < 0 ? size - 1 : lastAnchor;
    if (last <= first || last >= size) return;
    const BeatInfo a = grid[static_cast<std::size_t>(first)];
    const BeatInfo b = grid[static_cast<std::size_t>(last)];
    const EvenGrid even =
        evenGrid(static_cast<float>(a.pos), static_cast<float>(b.pos), last - first, length);
    if (!isUsable(even)) return;

    const double interval = static_cast<double>(even.beatSamples) / samplesPerMs(samplingRate);
    grid = evenBeats(even, static_cast<float>(interval));
    BeatInfo& head = grid[static_cast<std::size_t>(even.firstAnchor)];
    head.segHead = true;
    head.band = a.band;
    grid[static_cast<std::size_t>(even.lastAnchor)].band = b.band;
}

}  // namespace peakss
