// SPDX-License-Identifier: MIT
#include "peakss/grid/BeatInfoFinder.h"

#include <algorithm>

namespace peakss {

int BeatInfoFinder::b_serch(std::int32_t pos, const BeatInfo* beats, int count) {
    if (beats == nullptr) return -1;
    int low = 0;
    int high = count - 1;
    while (low <= high) {
        const int middle = low + (high - low) / 2;
        if (beats[middle].pos <= pos) {
            low = middle + 1;
        } else {
            high = middle - 1;
        }
    }
    return high;
}

int BeatInfoFinder::findIndex(const BeatList& list, std::int32_t pos) {
    if (list.empty()) return -1;
    return std::max(b_serch(pos, list.data(), static_cast<int>(list.size())), 0);
}

}  // namespace peakss
