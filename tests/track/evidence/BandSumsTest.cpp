// SPDX-License-Identifier: MIT
#include "track/evidence/BandSums.h"

#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "support/VectorForms.h"

namespace {

using namespace beatatlas::test;
using beatatlas::track::inner::BandSums;

/** Bands of 1, 2, 3 … bins, up to bin 400 at most. */
std::vector<int> growingBands() {
    std::vector<int> edges = {1};
    for (int width = 1; edges.back() + width <= 400; ++width) edges.push_back(edges.back() + width);
    return edges;
}

// Whole numbers below 2^24 have exact sums in any order.
TEST(BandSums, AddUpBandsOfEveryWidth) {
    const std::vector<int> edges = growingBands();
    for (const auto form : formsOfThisMachine()) {
        const FormScope scope(form);
        BandSums bands(edges);
        std::vector<float> expected;
        for (int bin = 0; bin < 400; ++bin)
            bands.powers()[bin] = static_cast<float>(bin * 7 % 1000);
        for (std::size_t b = 0; b + 1 < edges.size(); ++b)
            expected.push_back(
                std::accumulate(bands.powers() + edges[b], bands.powers() + edges[b + 1], 0.0F));
        std::vector<float> sums(edges.size() - 1);
        bands.sum(400, sums.data());
        EXPECT_EQ(sums, expected) << nameOf(form);
    }
}

}  // namespace
