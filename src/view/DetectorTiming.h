// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace beatatlas {

/** The time constants that the peak detectors of a loudness view share, in samples. */
struct DetectorTiming {
    DetectorTiming() = default;
    DetectorTiming(int rate, int len);

    /** Where in the coming chunk the declared track ends; outside the chunk when it does not end
     *  there. Every chunk before is taken to have been a full block. */
    std::int64_t lastSampleInChunk(std::int64_t chunksSeen) const {
        return (trackLen - 1) - (chunksSeen * blockLen);
    }

    /** Samples of a block of 1/75 s. */
    std::int32_t blockLen = 0;
    /** Declared length of the track in samples. */
    std::int64_t trackLen = 0;
    /** Least count at which a further peak is accepted. */
    std::int64_t minInterval = 0;
    /** Largest count at which a held level does not decay yet. */
    std::int64_t holdTime = 0;
    /** Samples from one decay to the next. */
    std::int32_t decayStep = 0;
};

}  // namespace beatatlas
