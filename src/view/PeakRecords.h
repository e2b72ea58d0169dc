// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "view/peak.h"

namespace beatatlas {

/** The peak records of one band, in order of time.
 *
 *  Room for a track of more than three hours is taken at once; longer tracks grow it, by doubling
 *  and between chunks only. Records not yet written are zero. */
class PeakRecords {
public:
    static constexpr std::size_t kCapacity = 36000;

    /** All records empty, record 0 marked as holding no peak yet. */
    void reset();

    /** Makes the records up to the current one of either detector, and those of one more chunk,
     *  addressable. */
    void makeRoom(std::int32_t recordCount) {
        const std::size_t needed = static_cast<std::size_t>(recordCount) + kMostPerChunk + 1;
        if (needed > records_.size()) grow(needed);
    }

    void release();

    peak* data() { return records_.data(); }
    const peak& operator[](std::int32_t i) const { return records_[static_cast<std::size_t>(i)]; }

private:
    /** A chunk is far shorter than the least peak interval: one accepted peak and the end of the
     *  track. */
    static constexpr std::size_t kMostPerChunk = 2;

    void grow(std::size_t needed);

    std::vector<peak> records_;
};

}  // namespace beatatlas
