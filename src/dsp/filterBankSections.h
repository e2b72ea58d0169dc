// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "dsp/filterBankLanes.h"
#include "dsp/vectorLanes.h"

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

/** kWidth neighbouring sections. */
template <std::size_t kWidth>
struct Sections {
    using Values = Doubles<kWidth>;
    using Integers = Lanes<std::int64_t, kWidth>;

    BEATATLAS_LANES void load(const FilterBankLanes& lanes, std::size_t first) {
        loadLanes(b0, lanes.b0.data() + first);
        loadLanes(b1, lanes.b1.data() + first);
        loadLanes(b2, lanes.b2.data() + first);
        loadLanes(a1, lanes.a1.data() + first);
        loadLanes(a2, lanes.a2.data() + first);
        loadLanes(x1, lanes.x1.data() + first);
        loadLanes(x2, lanes.x2.data() + first);
        loadLanes(y1, lanes.y1.data() + first);
        loadLanes(y2, lanes.y2.data() + first);
        loadLanes(delays, kFilterBankDelays.data() + first);
    }

    BEATATLAS_LANES void store(FilterBankLanes& lanes, std::size_t first) const {
        storeLanes(x1, lanes.x1.data() + first);
        storeLanes(x2, lanes.x2.data() + first);
        storeLanes(y1, lanes.y1.data() + first);
        storeLanes(y2, lanes.y2.data() + first);
    }

    /** The operations of IirFilter::operate, in its order. */
    BEATATLAS_LANES void take(const Values& x) {
        const Values y = ((((b0 * x) + (b1 * x1)) + (b2 * x2)) - (a1 * y1)) - (a2 * y2);
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
    }

    /** take() at step t of a block of n samples; the lanes whose sample lies outside the block rest. */
    BEATATLAS_LANES void takeAtBorder(const Values& x, std::int64_t t, std::int64_t n) {
        Sections after = *this;
        after.take(x);
        const Integers active = ((delays - (t + 1)) & (t - n - delays)) >> 63;
        choose<kWidth>(active, after.x1, x1);
        choose<kWidth>(active, after.x2, x2);
        choose<kWidth>(active, after.y1, y1);
        choose<kWidth>(active, after.y2, y2);
    }

    Values b0, b1, b2, a1, a2;
    Values x1, x2, y1, y2;
    Integers delays;
};

}  // namespace beatatlas
