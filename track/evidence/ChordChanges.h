// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "track/evidence/ChromaStream.h"

namespace beatatlas::track::inner {

/** How much the harmony after a time differs from that before it, ten times a second: the distance
 *  between the unit vectors of the mean chroma on both sides, 0 … √2. */
struct ChordChanges {
    /** Half a second, one second and two seconds on each side. */
    enum Span : std::size_t { kHalf, kOne, kTwo };
    static constexpr std::size_t kSpans = 3;

    std::array<std::vector<float>, kSpans> curves;  // one value more than frames
    std::array<double, kSpans> means{};

    /** The value nearest to a time; outside the track the first or last one. */
    double at(Span span, double seconds) const;
};

ChordChanges findChordChanges(const std::vector<Chroma>& chroma);

/** The distance between the unit vectors of two chroma, 0 … √2. */
double chordDistance(const ChromaSum& a, const ChromaSum& b);

}  // namespace beatatlas::track::inner
