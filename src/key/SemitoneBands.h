// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace beatatlas {

/** The bands a spectrum is read by: one per semitone, centred on 110 × 2^(b/12) Hz, from A2 to 20
 *  kHz. Band b holds the pitch class b mod 12. */
class SemitoneBands {
public:
    /** Lays out the bands for a spectrum of bins bins, binHz apart. */
    void create(int bins, double binHz);
    void release();

    int count() const { return static_cast<int>(bins_.size()); }

    /** Fills out with the largest magnitude inside each band, 0 where no bin falls into it.
     *  @param power  squared magnitudes of the bins, none of them NaN */
    void measure(const double* power, double* out) const;

private:
    /** Consecutive bins first … end − 1. */
    struct Bins {
        int first;
        int end;
    };

    template <std::size_t kWidth>
    struct Largest;

    std::vector<Bins> bins_;
};

}  // namespace beatatlas
