// SPDX-License-Identifier: MIT
#include "track/evidence/BandSums.h"

#include "dsp/vectorLanes.h"

namespace beatatlas::track::inner {

namespace {

constexpr std::ptrdiff_t kLanes = 16;
constexpr int kWidths = 5;  // 1, 2, 4, 8, 16
// Length of a row of sums. Reads go past the last bin by up to a vector and the widest sum.
constexpr std::ptrdiff_t kRow = BandSums::kMostBins + 2 * kLanes;

template <std::size_t kWidth>
struct NeighbourLanes {
    BEATATLAS_LANES static void run(const float* powers, int bins, float* rows) {
        using Values = Lanes<float, static_cast<std::size_t>(kLanes)>;
        const float* from = powers;
        for (std::ptrdiff_t width = 1; width < kLanes; width *= 2) {
            rows += kRow;
            for (std::ptrdiff_t k = 0; k < bins; k += kLanes) {
                Values near;
                Values far;
                loadLanes(near, from + k);
                loadLanes(far, from + k + width);
                storeLanes(near + far, rows + k);
            }
            from = rows;
        }
    }
};

}  // namespace

BandSums::BandSums(const std::vector<int>& edges)
    : neighbours_(static_cast<std::size_t>(kWidths * kRow)) {
    for (std::size_t band = 0; band + 1 < edges.size(); ++band) {
        firstTerms_.push_back(terms_.size());
        int from = edges[band];
        int row = kWidths - 1;
        while (from < edges[band + 1]) {
            while (from + (1 << row) > edges[band + 1]) --row;
            terms_.push_back(static_cast<std::size_t>(row * kRow + from));
            from += 1 << row;
        }
    }
    firstTerms_.push_back(terms_.size());
}

void BandSums::sum(int bins, float* sums) {
    runInLanes<NeighbourLanes>(static_cast<const float*>(neighbours_.data()), bins,
                               neighbours_.data());
    for (std::size_t band = 0; band + 1 < firstTerms_.size(); ++band) {
        float sum = neighbours_[terms_[firstTerms_[band]]];
        for (std::size_t i = firstTerms_[band] + 1; i < firstTerms_[band + 1]; ++i)
            sum += neighbours_[terms_[i]];
        sums[band] = sum;
    }
}

}  // namespace beatatlas::track::inner
