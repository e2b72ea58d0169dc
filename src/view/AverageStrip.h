// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "view/AverageLevel.h"
#include "view/WavePoint.h"

namespace beatatlas {

/** Spreads the averages over the 400 points of the loudness wave, by the number of chunks fed. */
class AverageStrip {
public:
    /** @param chunksPerPoint  may be a fraction */
    void create(float chunksPerPoint);
    void reset();

    /** To be called once per chunk.
     *  @param chunk  chunks fed so far, this one included
     *  @param ended  the track's last sample was in this chunk or earlier */
    void put(std::int64_t chunk, bool ended, const std::optional<AverageLevel::Average>& average);

    /** The point being filled; 400 once the track has ended. Points before it take no more chunks,
     *  though a merging average may still reach the last of them. */
    int index() const { return index_; }
    float operator[](int point) const { return points_[static_cast<std::size_t>(point)]; }

private:
    void moveTo(int target);
    void add(const AverageLevel::Average& average);
    float& at(int point) { return points_[static_cast<std::size_t>(point)]; }

    float chunksPerPoint_ = 0.0F;
    std::array<float, kLoudPoints> points_{};
    int index_ = 0;
    int lastAveraged_ = 0;  // point that took the last average that did not merge
};

}  // namespace beatatlas
