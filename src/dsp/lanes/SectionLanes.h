// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

/** Second-order sections in memory, a lane each: their coefficients, and what they keep from sample
 *  to sample.
 *
 *  In every design b2 is b0 or −b0, and rounding toward zero treats both signs alike: the product
 *  of the one is that of the other, to the bit. */
template <std::size_t kCount>
struct SectionRows {
    using Row = std::array<double, kCount>;

    Row b0, b1, a1, a2;
    /** The sign bit where b2 is −b0; elsewhere it is b0. */
    std::array<std::int64_t, kCount> flipB2;
    /** The last two inputs, as they enter the sums. */
    Row b1x1, b2x1, b2x2;
    /** The last two outputs. */
    Row y1, y2;
};

/** kWidth neighbouring sections in registers. */
template <std::size_t kWidth>
struct SectionLanes {
    using Values = Lanes<double, kWidth>;
    using Integers = Lanes<std::int64_t, kWidth>;

    template <class Rows>
    BEATATLAS_LANES void load(const Rows& rows, std::size_t first) {
        loadLanes(b0, rows.b0.data() + first);
        loadLanes(b1, rows.b1.data() + first);
        loadLanes(flipB2, rows.flipB2.data() + first);
        loadLanes(a1, rows.a1.data() + first);
        loadLanes(a2, rows.a2.data() + first);
        loadLanes(b1x1, rows.b1x1.data() + first);
        loadLanes(b2x1, rows.b2x1.data() + first);
        loadLanes(b2x2, rows.b2x2.data() + first);
        loadLanes(y1, rows.y1.data() + first);
        loadLanes(y2, rows.y2.data() + first);
    }

    template <class Rows>
    BEATATLAS_LANES void store(Rows& rows, std::size_t first) const {
        storeLanes(b1x1, rows.b1x1.data() + first);
        storeLanes(b2x1, rows.b2x1.data() + first);
        storeLanes(b2x2, rows.b2x2.data() + first);
        storeLanes(y1, rows.y1.data() + first);
        storeLanes(y2, rows.y2.data() + first);
    }

    /** The operations of SecondOrderSection::operate, in its order; but the products are made when
     *  the input comes. */
    BEATATLAS_LANES void take(const Values& x) {
        const Values b0x = b0 * x;
        const Values y = (((b0x + b1x1) + b2x2) - (a1 * y1)) - (a2 * y2);
        b1x1 = b1 * x;
        b2x2 = b2x1;
        flipSigns(flipB2, b0x, b2x1);
        y2 = y1;
        y1 = y;
    }

    /** take() where all bits of `active` are set; where none is, the lane rests. */
    BEATATLAS_LANES void takeWhere(const Integers& active, const Values& x) {
        SectionLanes after = *this;
        after.take(x);
        choose(active, after.b1x1, b1x1);
        choose(active, after.b2x1, b2x1);
        choose(active, after.b2x2, b2x2);
        choose(active, after.y1, y1);
        choose(active, after.y2, y2);
    }

    Values b0, b1, a1, a2;
    Integers flipB2;
    Values b1x1, b2x1, b2x2, y1, y2;

private:
    // Comparisons of lanes are compiled before the registers of the caller are known, so masks are
    // made by arithmetic.
    BEATATLAS_LANES static void choose(const Integers& mask, const Values& yes, Values& value) {
        Integers yesBits;
        Integers bits;
        loadLanes(yesBits, &yes);
        loadLanes(bits, &value);
        bits = (yesBits & mask) | (bits & ~mask);
        loadLanes(value, &bits);
    }

    BEATATLAS_LANES static void flipSigns(const Integers& signs, const Values& from, Values& to) {
        Integers bits;
        loadLanes(bits, &from);
        bits ^= signs;
        loadLanes(to, &bits);
    }
};

}  // namespace beatatlas
