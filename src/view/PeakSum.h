// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "view/PeakRecords.h"
#include "view/WavePoint.h"

namespace beatatlas {

/** Sums the peak levels of one band into the 400 points of the loudness wave, two points to a slot:
 *  a point alone would be shorter than the time between two beats. */
class PeakSum {
public:
    /** @param chunksPerSlot  may be a fraction */
    void create(float chunksPerSlot);
    void reset();

    /** To be called once per chunk, after the band's level detector.
     *  @param recordCount  records closed so far; the newest may still change until the track has
     *                      ended
     *  @param chunk  chunks fed so far, this one included */
    void put(const PeakRecords& records, std::int32_t recordCount, bool ended, std::int64_t chunk);

    /** First point of the slot being filled; 400 once the strip is full. */
    int index() const { return index_; }
    float operator[](int point) const { return points_[static_cast<std::size_t>(point)]; }

private:
    static constexpr int kPointsPerSlot = 2;

    void sumUpTo(std::int32_t to, const PeakRecords& records, bool ended, std::int64_t chunk);
    void closeSlot();
    float& at(int point) { return points_[static_cast<std::size_t>(point)]; }

    float chunksPerSlot_ = 0.0F;
    std::array<float, kLoudPoints> points_{};
    std::int32_t firstUnsummed_ = 0;
    int index_ = 0;
    float carry_ = 0.0F;              // chunks since the slot began
    std::int64_t previousChunk_ = 0;  // chunk counter at the previous sum
};

}  // namespace beatatlas
