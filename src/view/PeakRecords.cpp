// SPDX-License-Identifier: MIT
#include "view/PeakRecords.h"

#include <algorithm>

namespace beatatlas {

void PeakRecords::reset() {
    records_.assign(kCapacity, peak{});
    records_[0].level = kNoPeakLevel;
    records_[0].level900 = kNoPeakLevel;
}

void PeakRecords::grow(std::size_t needed) {
    records_.resize(std::max(needed, 2 * records_.size()), peak{});
}

void PeakRecords::release() {
    records_.clear();
    records_.shrink_to_fit();
}

}  // namespace beatatlas
