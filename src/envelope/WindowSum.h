// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas {

/** Adds up the levels around many beats, offset by offset: beats that sit on the pulses pile them
 *  up in one spot.
 *
 *  Levels are 0..32767. They gather in 32-bit integers, which fill twice as many vector lanes as
 *  doubles, and go over into the double sums before they could overflow. Every sum stays a whole
 *  number below 2^53, so the doubles are exact and the same as if each level had been added there.
 *  Cost of add(): one addition per offset. Memory: 12 bytes per offset, allocated in create(). */
class WindowSum {
public:
    struct Peak {
        double value = 0.0;
        /** Index of the largest sum, 0 when none is above 0. */
        int offset = 0;
    };

    /** Levels per window; ≤ 0 makes an empty one. */
    void create(int width);
    void clear();
    /** Reads one level per offset. */
    void add(const std::int16_t* levels);

    /** The largest of the first `count` sums and the first offset that has it. */
    Peak findBeatPosition(int count);

    int width() const { return static_cast<int>(sums_.size()); }

private:
    static constexpr int kMostGathered = 65536;  // × 32767 still fits in 32 bits

    void settle();

    std::vector<double> sums_;
    std::vector<std::int32_t> gathered_;
    int gatheredCount_ = 0;
};

}  // namespace beatatlas
