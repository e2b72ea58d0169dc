// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "track/evidence/ChromaStream.h"

namespace beatatlas::track::inner {

/** How much the harmony after a time differs from that before, ten times a second: the distance
 *  between the directions of the mean chroma on both sides, 0 … √2. */
struct ChordChanges {
    /** Half a second, one and two on each side. */
    enum Span : std::size_t { kHalf, kOne, kTwo };
    static constexpr std::size_t kSpans = 3;

    std::array<std::vector<float>, kSpans> curves;  // one value more than there are frames
    std::array<double, kSpans> means{};

    double at(Span span, double seconds) const;
};

ChordChanges findChordChanges(const std::vector<Chroma>& chroma);

/** The distance between the directions of two. */
double chordDistance(const ChromaSum& a, const ChromaSum& b);

}  // namespace beatatlas::track::inner
