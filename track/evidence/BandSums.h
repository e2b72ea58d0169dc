// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace beatatlas::track::inner {

/** Sums the bins of each band of a spectrum. Bands are one bin to dozens of bins wide.
 *
 *  All sums of 2, 4, 8 and 16 neighbours are computed in vector lanes, and each band is the sum of
 *  a few of them: the order of the additions is the same in every vector form. */
class BandSums {
public:
    static constexpr int kMostBins = 512;

    /** @param edges  ascending bins below kMostBins: band b holds edges[b] to edges[b + 1],
     *  exclusive */
    explicit BandSums(const std::vector<int>& edges);

    /** The caller writes the powers of kMostBins bins here before sum(). */
    float* powers() { return neighbours_.data(); }

    /** @param bins  how many of the powers count, a multiple of 16
     *  @param sums  receives one sum for each band */
    void sum(int bins, float* sums);

private:
    // Powers, then their sums of 2, 4, 8 and 16 neighbours.
    std::vector<float> neighbours_;
    // The terms of all bands, as indexes into neighbours_.
    std::vector<std::size_t> terms_;
    // Index of each band's first term, and the end.
    std::vector<std::size_t> firstTerms_;
};

}  // namespace beatatlas::track::inner
