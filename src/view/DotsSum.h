// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "view/PeakRecords.h"
#include "view/WavePoint.h"

namespace beatatlas {

/** Sums the peaks of one band's decimated detector into the 100 dots. */
class DotsSum {
public:
    void create(std::int32_t chunksPerDot);
    void reset();

    /** To be called once per chunk, after the band's decimated detector.
     *  @param recordCount  records closed so far
     *  @param chunk  chunks fed so far, this one included */
    void put(const PeakRecords& records, std::int32_t recordCount, bool ended, std::int64_t chunk);

    /** The dot being filled; 100 once the end of the track has been seen. */
    int index() const { return index_; }
    std::int32_t operator[](int dot) const { return dots_[static_cast<std::size_t>(dot)]; }

private:
    void moveTo(int target);
    std::int32_t& at(int dot) { return dots_[static_cast<std::size_t>(dot)]; }

    std::int32_t chunksPerDot_ = 1;
    std::array<std::int32_t, kDots> dots_{};
    std::int32_t firstUnsummed_ = 0;
    int index_ = 0;
};

}  // namespace beatatlas
