// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "dsp/filterBankLanes.h"
#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

template <std::size_t kWidth>
using Doubles = Lanes<double, kWidth>;

// Comparisons of lanes are compiled before the registers of the caller are known, so masks are made by arithmetic.
template <std::size_t kWidth>
BEATATLAS_LANES void choose(const Lanes<std::int64_t, kWidth>& mask, const Doubles<kWidth>& yes,
                            Doubles<kWidth>& value) {
    Lanes<std::int64_t, kWidth> yesBits;
    Lanes<std::int64_t, kWidth> bits;
    loadLanes(yesBits, &yes);
    loadLanes(bits, &value);
    bits = (yesBits & mask) | (bits & ~mask);
    loadLanes(value, &bits);
}

template <std::size_t kWidth>
BEATATLAS_LANES void flipSigns(const Lanes<std::int64_t, kWidth>& signs,
                               const Doubles<kWidth>& from, Doubles<kWidth>& to) {
    Lanes<std::int64_t, kWidth> bits;
    loadLanes(bits, &from);
    bits ^= signs;
    loadLanes(to, &bits);
}

/** kWidth neighbouring sections. */
template <std::size_t kWidth>
struct Sections {
    using Values = Doubles<kWidth>;
    using Integers = Lanes<std::int64_t, kWidth>;

    BEATATLAS_LANES void load(const FilterBankLanes& lanes, std::size_t first) {
        loadLanes(b0, lanes.b0.data() + first);
        loadLanes(b1, lanes.b1.data() + first);
        loadLanes(flipB2, lanes.flipB2.data() + first);
        loadLanes(a1, lanes.a1.data() + first);
        loadLanes(a2, lanes.a2.data() + first);
        loadLanes(b1x1, lanes.b1x1.data() + first);
        loadLanes(b2x1, lanes.b2x1.data() + first);
        loadLanes(b2x2, lanes.b2x2.data() + first);
        loadLanes(y1, lanes.y1.data() + first);
        loadLanes(y2, lanes.y2.data() + first);
        loadLanes(delays, kFilterBankDelays.data() + first);
    }

    BEATATLAS_LANES void store(FilterBankLanes& lanes, std::size_t first) const {
        storeLanes(b1x1, lanes.b1x1.data() + first);
        storeLanes(b2x1, lanes.b2x1.data() + first);
        storeLanes(b2x2, lanes.b2x2.data() + first);
        storeLanes(y1, lanes.y1.data() + first);
        storeLanes(y2, lanes.y2.data() + first);
    }

    /** The operations of IirFilter::operate, in its order; but the products are made when the input comes. */
    BEATATLAS_LANES void take(const Values& x) {
        const Values b0x = b0 * x;
        const Values y = (((b0x + b1x1) + b2x2) - (a1 * y1)) - (a2 * y2);
        b1x1 = b1 * x;
        b2x2 = b2x1;
        flipSigns<kWidth>(flipB2, b0x, b2x1);
        y2 = y1;
        y1 = y;
    }

    /** take() at step t of a block of n samples; the lanes whose sample lies outside the block rest. */
    BEATATLAS_LANES void takeAtBorder(const Values& x, std::int64_t t, std::int64_t n) {
        Sections after = *this;
        after.take(x);
        const Integers active = ((delays - (t + 1)) & (t - n - delays)) >> 63;
        choose<kWidth>(active, after.b1x1, b1x1);
        choose<kWidth>(active, after.b2x1, b2x1);
        choose<kWidth>(active, after.b2x2, b2x2);
        choose<kWidth>(active, after.y1, y1);
        choose<kWidth>(active, after.y2, y2);
    }

    Values b0, b1, a1, a2;
    Integers flipB2;
    Values b1x1, b2x1, b2x2, y1, y2;
    Integers delays;
};

}  // namespace beatatlas
