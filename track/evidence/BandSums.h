// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace beatatlas::track::inner {

/** Sums of the bins of each band of a spectrum, of bands one bin to dozens wide.
 *
 *  All sums of 2, 4, 8 and 16 neighbours are made in vector lanes, and a band is put together from
 *  a few of them: the order of the additions is the same in every vector form. */
class BandSums {
public:
    static constexpr int kMostBins = 512;

    /** @param edges  ascending bins below kMostBins: band b holds edges[b] to edges[b + 1],
     *  exclusive */
    explicit BandSums(const std::vector<int>& edges);

    /** Where the powers of kMostBins bins are to be written before sum(). */
    float* powers() { return neighbours_.data(); }

    /** @param bins  how many of the powers count, a multiple of 16
     *  @param sums  receives one for each band */
    void sum(int bins, float* sums);

private:
    std::vector<float> neighbours_;        // powers, then their sums of 2, 4, 8 and 16 neighbours
    std::vector<std::size_t> terms_;       // of all bands, as places among them
    std::vector<std::size_t> firstTerms_;  // of each band, and the end
};

}  // namespace beatatlas::track::inner
